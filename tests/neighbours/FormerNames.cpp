// A host's classes with names that ours once had, in a source file that includes none of our headers. Their
// virtual tables are emitted here.
#include <string>

#define FOR_EACH_NAME(what)                                                                       \
  what(Class) what(Object) what(Text) what(Ref) what(RefPtr) what(Parameter) what(FormatArgument) \
      what(CleansingAllocator) what(SecretAllocator) what(Digest) what(Reader)
#define DEFINE(name)                   \
  class name {                         \
   public:                             \
    virtual ~name();                   \
    virtual std::string whose() const; \
  };                                   \
  name::~name() = default;             \
  std::string name::whose() const { return #name; }
#define IS_THE_HOSTS(name) &&name().whose() == #name

FOR_EACH_NAME(DEFINE)

bool formerNamesAreTheHosts() { return true FOR_EACH_NAME(IS_THE_HOSTS); }
