#pragma once
/// What the names of parts give away, in the languages that modellers use.

#include <string>
#include <string_view>
#include <vector>

namespace tavrik {

/// What the words of a name say.
struct NameHints {
    bool wheel = false;      // a wheel, or a part of one that turns with it
    bool notAWheel = false;  // has to do with wheels, but isn't one: a steering wheel, a wheel arch, a spare
    int end = 0;             // 1: front, -1: back
    int side = 0;            // 1: right, -1: left
    int bodyEnd = 0;         // a part of the body that sits at the front (1) or the back (-1), such as a bonnet
    bool bike = false;
};

NameHints HintsOf(std::string_view name);

/// Lower-case words of a name: "wheelFront_L.001" has "wheel", "front", "l" and "001".
std::vector<std::string> WordsOf(std::string_view name);

/// Whether `name` is of the form `pattern`, in which `*` stands for any text and `?` for any letter. Case doesn't count.
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace tavrik
