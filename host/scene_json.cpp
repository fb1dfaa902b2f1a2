#include "host/scene_json.h"

#include <fmt/format.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace tavrik_host {

void Refuse(const std::string& sentence) { throw SceneFault(sentence); }

const Json* Find(const Json& object, const char* key) {
    if (!object.is_object()) return nullptr;
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const Json& Need(const Json& object, const char* key, const std::string& where) {
    const Json* value = Find(object, key);
    if (value == nullptr) Refuse(fmt::format("{} has no \"{}\".", where, key));
    return *value;
}

std::int64_t WholeNumber(const Json& value, std::int64_t low, std::int64_t high, const std::string& what) {
    // Some programs write whole numbers as 3.0, and text from others may hold any number.
    const bool whole = value.is_number_integer() || (value.is_number_float() && std::abs(value.get<double>()) < 0x1p53 &&
                                                     value.get<double>() == std::floor(value.get<double>()));
    const bool small =
        !value.is_number_unsigned() || value.get<std::uint64_t>() <= std::uint64_t(std::numeric_limits<std::int64_t>::max());
    if (whole && small) {
        const std::int64_t number = value.is_number_float() ? std::int64_t(value.get<double>()) : value.get<std::int64_t>();
        if (number >= low && number <= high) return number;
    }
    const bool open = low == 0 && high == std::numeric_limits<std::int64_t>::max();
    Refuse(open ? fmt::format("{} is not a whole number from 0 on.", what)
                : fmt::format("{} is not a whole number from {} to {}.", what, low, high));
}

std::size_t IndexInto(const Json& value, std::size_t count, const char* list, const std::string& what) {
    const std::int64_t index = WholeNumber(value, 0, std::numeric_limits<std::int64_t>::max(), what);
    if (std::size_t(index) >= count) Refuse(fmt::format("{} is {}, but the file has {} {}.", what, index, count, list));
    return std::size_t(index);
}

std::int32_t Int32(const Json& value, const std::string& what) {
    return std::int32_t(
        WholeNumber(value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max(), what));
}

std::uint32_t Uint32(const Json& value, const std::string& what) {
    return std::uint32_t(WholeNumber(value, 0, std::numeric_limits<std::uint32_t>::max(), what));
}

double Number(const Json& value, const std::string& what) {
    if (!value.is_number() || !std::isfinite(value.get<double>())) Refuse(fmt::format("{} is not a number.", what));
    return value.get<double>();
}

float Single(const Json& value, const std::string& what) {
    const double number = Number(value, what);
    if (!std::isfinite(float(number))) Refuse(fmt::format("{} is too large a number.", what));
    return float(number);
}

const std::string& Text(const Json& value, const std::string& what) {
    if (!value.is_string()) Refuse(fmt::format("{} is not a text.", what));
    return value.get_ref<const std::string&>();
}

const Json& ListOf(const Json& value, const std::string& what) {
    if (!value.is_array()) Refuse(fmt::format("{} is not a list.", what));
    return value;
}

const Json& ListOf(const Json& value, std::size_t size, const std::string& what) {
    if (ListOf(value, what).size() != size) Refuse(fmt::format("{} has {} entries instead of {}.", what, value.size(), size));
    return value;
}

const Json& ObjectOf(const Json& value, const std::string& what) {
    if (!value.is_object()) Refuse(fmt::format("{} is not an object.", what));
    return value;
}

const Json& OptionalList(const Json& object, const char* key, const std::string& where) {
    static const Json kNone = Json::array();
    const Json* list = Find(object, key);
    return list == nullptr ? kNone : ListOf(*list, fmt::format("\"{}\" of {}", key, where));
}

Json SingleToJson(float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value);
    double shortest = 0.0;
    std::from_chars(text, end.ptr, shortest);
    // Rounding twice, to double and then to single, could in principle end beside the number.
    return std::bit_cast<std::uint32_t>(float(shortest)) == std::bit_cast<std::uint32_t>(value) ? shortest : double(value);
}

Json FiniteToJson(float value, const std::string& what) {
    if (!std::isfinite(value)) Refuse(fmt::format("{} is not a finite number.", what));
    return SingleToJson(value);
}

bool Take(Json& object, const char* key, Json& value) {
    const auto found = object.find(key);
    if (found == object.end()) return false;
    value = std::move(*found);
    object.erase(found);
    return true;
}

}  // namespace tavrik_host
