#pragma once
/// The places in a glTF file's text that refer to its accessors, buffer views and bytes.

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "host/scene_json.h"

namespace tavrik_host {

using VisitJson = std::function<void(Json& value)>;

/// Calls `visit` with each entry of the list, or of the object, under `key`; with none where there is neither.
void ForEach(Json& object, const char* key, const VisitJson& visit);
/// Calls `visit` with the value that is found down a path of keys, if it is there.
void VisitAt(Json& object, std::initializer_list<const char*> path, const VisitJson& visit);

/// Calls `visit` with every number of an accessor.
void VisitAccessorUses(Json& json, const VisitJson& visit);
/// Likewise only where animations read.
void VisitAnimationAccessors(Json& json, const VisitJson& visit);
/// Calls `visit` with every number of a buffer view, but those of our extension's chunks.
void VisitViewUses(Json& json, const VisitJson& visit);
/// Likewise with those of the chunks.
void VisitChunkViews(Json& json, const VisitJson& visit);
/// Calls `visit` with each thing in a buffer view that has a "buffer", a "byteOffset" and a "byteLength".
void VisitExtents(Json& view, const VisitJson& visit);

/// Whether the references of an extension to accessors and buffer views are among those above.
bool UsesAreKnown(std::string_view extension);

/// How long a list of the file is; 0 where there is none.
std::size_t CountOf(const Json& json, const char* key);

}  // namespace tavrik_host
