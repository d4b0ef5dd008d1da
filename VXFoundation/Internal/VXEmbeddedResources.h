#pragma once

#include <string_view>

/// A file of the bundle's resources that is inside the library, where there is no bundle. The build writes
/// the list, which is empty in a shared library; its last entry has no name.
struct VXEmbeddedResource {
  std::string_view name, content;
};
extern const VXEmbeddedResource VXEmbeddedResources[];
