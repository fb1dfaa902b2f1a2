#pragma once
/// Parameters of objects and controllers, between blocks, records and a scene file's text.

#include <functional>
#include <string>

#include "host/scene_records.h"

namespace tavrik_host {

/// What a reference of a parameter is called in a file.
struct ReferenceNumbers {
    std::function<ULONG(INode&)> node;            // handle
    std::function<int(ReferenceTarget&)> object;  // in the list of objects
};

/// Reads the parameters of an instance of `desc`. Refuses (`SceneFault`) names that the class doesn't have, values of another
/// type, and numbers outside of their range. Where a default itself lies outside, as with key codes beyond a byte, the range is
/// what its control offers and not what a value keeps to; then any number goes.
/// @param objects  how many things the list of objects has
std::vector<ParamRecord> ReadParameters(const Json& json, ClassDesc* desc, std::size_t objects, const std::string& thing);

/// The parameters of all blocks that `thing` refers to. Refuses what `ReadParameters` wouldn't take back.
Json WriteParameters(ReferenceMaker& thing, const ReferenceNumbers& numbers, const std::string& name);

/// Sets what doesn't refer to nodes.
/// @param objects  the things that records number
void SetPlainParameters(ReferenceMaker& thing, const std::vector<ParamRecord>& parameters,
                        const std::vector<ReferenceTarget*>& objects, const std::string& name);
/// Sets what does.
void SetNodeParameters(ReferenceMaker& thing, const std::vector<ParamRecord>& parameters);

Json MatrixToJson(const Matrix3& m, const std::string& what);
Matrix3 MatrixFromJson(const Json& json, const std::string& what);

}  // namespace tavrik_host
