#include "host/scene_seal.h"

#include <fmt/format.h>
#include <zlib.h>

#include "host/scene_json.h"

namespace tavrik_host {
namespace {

constexpr std::size_t kDigits = 8;

/// Where the digits of the sum stand. They are looked for in the bytes, since damage may have hit whatever stands around them;
/// a program that writes the text anew hardly writes it to the letter as we do.
std::size_t FindDigits(std::string_view glb) {
    const std::string token = fmt::format("{{\"{}\":\"", kSealKey);
    const std::size_t at = glb.find(token);
    if (at == std::string_view::npos || glb.size() - at < token.size() + kDigits) return std::string_view::npos;
    return at + token.size();
}

/// The sum of the file with `kNoSeal` in the place of its digits.
std::string SumOf(std::string_view glb, std::size_t digitsAt) {
    const auto add = [](uLong sum, std::string_view bytes) {
        return crc32_z(sum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    };
    uLong sum = add(0, glb.substr(0, digitsAt));
    sum = add(sum, kNoSeal);
    sum = add(sum, glb.substr(digitsAt + kDigits));
    return fmt::format("{:08x}", sum);
}

}  // namespace

void SealScene(std::string& glb) {
    const std::size_t at = FindDigits(glb);
    if (at != std::string::npos) glb.replace(at, kDigits, SumOf(glb, at));
}

void CheckSeal(std::string_view glb) {
    const std::size_t at = FindDigits(glb);
    if (at == std::string_view::npos || SumOf(glb, at) == glb.substr(at, kDigits)) return;
    Refuse(
        fmt::format("its bytes are not those that were written, so it is damaged; take it from a backup (if a program changed "
                    "it on purpose, "
                    "take \"{}\" out of its text).",
                    kSealKey));
}

}  // namespace tavrik_host
