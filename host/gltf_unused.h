#pragma once
/// Data of our own in a glTF file, which goes when nothing reads it any more.

#include <vector>

#include "host/gltf_document.h"

namespace tavrik_host {

/// The accessors that animations read, and the buffer views that our extension's chunks lie in.
struct OwnData {
    std::vector<bool> accessors, views;
};
OwnData FindOwnData(const Json& json);

/// Drops data that was `own` and that nothing reads any more, with the bytes that no buffer view is left of. Numbers of
/// accessors and views are set anew wherever glTF and the common extensions use them; with an extension about that we don't
/// know what it refers to, only the ends of the two lists are dropped, so that its numbers go on meaning the same.
void DropUnused(GltfFile& gltf, const OwnData& own);

}  // namespace tavrik_host
