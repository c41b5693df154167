#include "inspect/other_operators.h"

#include <array>

#include "base/text.h"

namespace kiln {
namespace {

constexpr std::string_view lowByteInstead = "write '<a' for a&$FF, and 'a-a/8*8' for a&7";
constexpr std::string_view sumInstead = "write 'a+b', which is the same when no bit is set in both";
constexpr std::string_view timesInstead = "write 'a*8' for a<<3";
constexpr std::string_view quotientInstead = "write 'a/8' for a>>3, and '>a' for a>>8";
constexpr std::string_view differenceInstead = "write '$FF-a' to invert a byte, '$FFFF-a' for a word";
constexpr std::string_view remainderInstead = "write 'a-a/b*b' for the remainder of a/b";
constexpr std::string_view byHandInstead = "work out the value and write the number";

// A spelling comes before those that it begins with.
// clang-format off
constexpr std::array signs = {
    OtherOperator{"<<", timesInstead},
    OtherOperator{">>", quotientInstead},
    OtherOperator{"<=", byHandInstead},
    OtherOperator{">=", byHandInstead},
    OtherOperator{"<>", byHandInstead},
    OtherOperator{"==", byHandInstead},
    OtherOperator{"!=", byHandInstead},
    OtherOperator{"&&", byHandInstead},
    OtherOperator{"||", byHandInstead},
    OtherOperator{"<",  byHandInstead},
    OtherOperator{">",  byHandInstead},
    OtherOperator{"=",  byHandInstead},
    OtherOperator{"!",  byHandInstead},
    OtherOperator{"^",  byHandInstead},
    OtherOperator{"&",  lowByteInstead},
    OtherOperator{"|",  sumInstead},
    OtherOperator{"~",  differenceInstead},
    OtherOperator{"%",  remainderInstead},
};

constexpr std::array words = {
    OtherOperator{"AND", lowByteInstead},
    OtherOperator{"OR",  sumInstead},
    OtherOperator{"XOR", byHandInstead},
    OtherOperator{"EOR", byHandInstead},
    OtherOperator{"NOT", differenceInstead},
    OtherOperator{"SHL", timesInstead},
    OtherOperator{"SHR", quotientInstead},
    OtherOperator{"MOD", remainderInstead},
};
// clang-format on

const OtherOperator* signIn(std::string_view text) {
  const size_t at = text.find_first_of("<>=!^&|~%");
  if (at == std::string_view::npos) return nullptr;
  for (const OtherOperator& sign : signs) {
    if (text.substr(at).starts_with(sign.spelling)) return &sign;
  }
  return nullptr;
}

// A word in a longer text is probably part of a comment without its semicolon.
const OtherOperator* wordIn(std::string_view text) {
  const OtherOperator* found = nullptr;
  size_t count = 0;
  for (std::string_view word = takeWord(text); !word.empty() && count < 4; word = takeWord(text)) {
    ++count;
    for (const OtherOperator& known : words) {
      if (equalIgnoringCase(word, known.spelling)) found = &known;
    }
  }
  return count == 2 || count == 3 ? found : nullptr;
}

}  // namespace

const OtherOperator* otherOperatorIn(std::string_view text) {
  const OtherOperator* const sign = signIn(text);
  return sign != nullptr ? sign : wordIn(text);
}

}  // namespace kiln
