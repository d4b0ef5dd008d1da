// A host's own classes of names that ours once had, in a source file that includes nothing of ours. Their
// tables of virtual functions are emitted here.
#include <string>

#define FORMER(name)                   \
  class name {                         \
   public:                             \
    virtual ~name();                   \
    virtual std::string whose() const; \
  };                                   \
  name::~name() = default;             \
  std::string name::whose() const { return #name; }

FORMER(Class)
FORMER(Object)
FORMER(Text)
FORMER(Ref)
FORMER(RefPtr)
FORMER(Parameter)
FORMER(FormatArgument)
FORMER(CleansingAllocator)
FORMER(SecretAllocator)
FORMER(Digest)
FORMER(Reader)

bool formerNamesAreTheHosts() {
  return Class().whose() == "Class" && Object().whose() == "Object" && Text().whose() == "Text" &&
         Ref().whose() == "Ref" && RefPtr().whose() == "RefPtr" && Parameter().whose() == "Parameter" &&
         FormatArgument().whose() == "FormatArgument" && Digest().whose() == "Digest" &&
         CleansingAllocator().whose() == "CleansingAllocator" && Reader().whose() == "Reader" &&
         SecretAllocator().whose() == "SecretAllocator";
}
