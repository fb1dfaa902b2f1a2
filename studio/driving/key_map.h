#pragma once
/// Which classic key code a key of this keyboard stands for.

#include <cstdint>

namespace tavrik_studio {

struct VirtualKey {
    std::int32_t code = 0;     // 0: none that messages know
    std::int32_t general = 0;  // what either key of a pair is called beside its own code; 0 where there is no such name
};

/// Letters, digits and signs go by where they lie on an American keyboard, so that W, A, S and D are a cross under every
/// layout; keys with a name of their own go by that name. Only the left shift key goes by the code of both, as bindings to
/// shift always meant it; the other shift, control and alt keys each have a code of their own.
///
/// @param scanCode  as X11 and Wayland count, which is the kernel's code plus 8; 0: unknown, the key's name decides
/// @param key       of Qt::Key
/// @param keypad    whether it lies on the number pad
VirtualKey VirtualKeyOf(std::uint32_t scanCode, int key, bool keypad);

}  // namespace tavrik_studio
