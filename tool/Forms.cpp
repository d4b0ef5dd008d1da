#include "tool/Forms.h"

const std::map<std::string, VXNotation> encodedForms = {
    {"base64", VXNotation::base64}, {"base64url", VXNotation::base64URL}, {"base32", VXNotation::base32},
    {"base16", VXNotation::base16}, {"base2", VXNotation::base2},         {"url", VXNotation::percent},
};

const std::map<std::string, VXNotation> decodedForms = [] {
  auto forms = encodedForms;
  forms.erase("base2");
  return forms;
}();
