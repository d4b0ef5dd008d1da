#include <Security/FileStore/SecFileRecovery.h>

#include <algorithm>

#include <Security/FileStore/SecFileCrypto.h>

namespace {

constexpr std::string_view alphabet = "abcdefghijklmnopqrstuvwxyz234567";
constexpr std::size_t letterBits = 5;
constexpr std::size_t letterCount = 28;
constexpr std::size_t groupSize = 4;
constexpr std::size_t randomSize = 16;

using Letters = std::vector<std::byte, SecSecretAllocator<std::byte>>;

bool bitOf(SecView bytes, std::size_t place) {
  return std::to_integer<unsigned>(bytes[place / 8] >> (7 - place % 8)) & 1U;
}

Letters lettersOf(SecView random) {
  SecSecretWriter all;
  all.reserve(randomSize + sizeof(SecDigest));
  all.raw(random).raw(secHash(random));
  Letters letters;
  letters.reserve(letterCount);
  for (std::size_t letter = 0; letter < letterCount; ++letter) {
    std::size_t value = 0;
    for (std::size_t bit = 0; bit < letterBits; ++bit)
      value = value * 2 + bitOf(all.bytes(), letter * letterBits + bit);
    letters.push_back(static_cast<std::byte>(alphabet[value]));
  }
  return letters;
}

/// Returns the letters in what was typed, or fewer than letterCount if there are others.
Letters lettersIn(SecView typed) {
  Letters letters;
  letters.reserve(letterCount);
  for (const std::byte byte : typed) {
    char letter = static_cast<char>(byte);
    if (letter == ' ' || letter == '-') continue;
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    if (letters.size() == letterCount || alphabet.find(letter) == alphabet.npos) return {};
    letters.push_back(static_cast<std::byte>(letter));
  }
  return letters;
}

SecSecret randomIn(const Letters& letters) {
  SecSecret random(randomSize);
  for (std::size_t place = 0; place < randomSize * 8; ++place) {
    const std::size_t value = alphabet.find(static_cast<char>(letters[place / letterBits]));
    const std::size_t bit = (value >> (letterBits - 1 - place % letterBits)) & 1U;
    std::byte& byte = random.writableBytes()[place / 8];
    byte |= static_cast<std::byte>(bit << (7 - place % 8));
  }
  return random;
}

}  // namespace

SecSecret secMakeRecoveryPassphrase() {
  const Letters letters = lettersOf(secRandomSecret(randomSize).bytes());
  Letters shown;
  shown.reserve(letterCount + letterCount / groupSize);
  for (std::size_t place = 0; place < letterCount; ++place) {
    if (place > 0 && place % groupSize == 0) shown.push_back(std::byte{'-'});
    shown.push_back(letters[place]);
  }
  return SecSecret(shown);
}

SecSecret secMeantPassphrase(SecView typed) {
  const Letters letters = lettersIn(typed);
  const bool isRecovery = letters.size() == letterCount && lettersOf(randomIn(letters).bytes()) == letters;
  return isRecovery ? SecSecret(letters) : SecSecret(typed);
}
