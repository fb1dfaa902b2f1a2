#pragma once
/// Values as bytes from one process to another of the same program: as they lie in memory, one behind the other.

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace tavrik {

template <typename Value>
void Append(std::string& bytes, const Value* values, std::size_t count) {
    static_assert(std::is_trivially_copyable_v<Value>);
    if (count > 0) bytes.append(reinterpret_cast<const char*>(values), count * sizeof(Value));
}

/// Takes what `Append` put there off the front. @return false where there are not so many; the bytes then stay
template <typename Value>
bool Take(std::string_view& bytes, Value* values, std::size_t count) {
    static_assert(std::is_trivially_copyable_v<Value>);
    if (count > bytes.size() / sizeof(Value)) return false;
    if (count > 0) std::memcpy(values, bytes.data(), count * sizeof(Value));
    bytes.remove_prefix(count * sizeof(Value));
    return true;
}

}  // namespace tavrik
