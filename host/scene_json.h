#pragma once
/// Values out of a scene file's text, each checked before it is used. What is wrong is thrown as one sentence, and caught where
/// the file is opened.

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace tavrik_host {

using Json = nlohmann::ordered_json;

/// What is wrong with a file or a scene: one sentence without the file's name. It never leaves the functions of scene_file.h.
class SceneFault : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};
[[noreturn]] void Refuse(const std::string& sentence);

/// @return null where `object` is none or has no such entry
const Json* Find(const Json& object, const char* key);
/// An entry that has to be there.
/// @param where  names `object` in messages, such as "node 3"
const Json& Need(const Json& object, const char* key, const std::string& where);

// Each refuses a value of another kind or size. `what` names the value in messages.
std::int64_t WholeNumber(const Json& value, std::int64_t low, std::int64_t high, const std::string& what);
/// Below `count`, which is that of a list called `list`.
std::size_t IndexInto(const Json& value, std::size_t count, const char* list, const std::string& what);
std::int32_t Int32(const Json& value, const std::string& what);
std::uint32_t Uint32(const Json& value, const std::string& what);
double Number(const Json& value, const std::string& what);
/// A number that single precision can hold.
float Single(const Json& value, const std::string& what);
const std::string& Text(const Json& value, const std::string& what);
const Json& ListOf(const Json& value, const std::string& what);
/// A list with so many entries.
const Json& ListOf(const Json& value, std::size_t size, const std::string& what);
const Json& ObjectOf(const Json& value, const std::string& what);
/// The list under `key`; an empty one where there is none.
const Json& OptionalList(const Json& object, const char* key, const std::string& where);

/// The shortest decimal that reads back as the same single-precision number, bit for bit.
Json SingleToJson(float value);
/// Likewise, and refuses what isn't finite.
Json FiniteToJson(float value, const std::string& what);

/// Takes an entry out. @return whether it was there
bool Take(Json& object, const char* key, Json& value);

}  // namespace tavrik_host
