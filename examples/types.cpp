// A host that opens images, and nothing else.
#include <VXFoundation/VXFoundation.h>

#include <iostream>

namespace {

bool isImage(NSStringArg name) {
  return VXUTTypeConformsTo(UTTypeIdentifierForFileName(name), "public.image");
}

void show(const char* name) { std::cout << name << (isImage(name) ? ": an image\n" : ": not an image\n"); }

}  // namespace

int main() {
  for (const char* name : {"holiday.JPG", "logo.svg", "report.pdf", "image"}) show(name);
}
