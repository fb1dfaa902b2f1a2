#pragma once
/// The rig's tables of parameters as the host takes them.

#include <iparamb2.h>

#include <memory>
#include <string_view>

#include "plugin/module.h"

namespace tavrik_plugin {

/// The table of a class, which registers with `owner`. Where the class attaches its controls at run time, it has none yet.
std::unique_ptr<ParamBlockDesc2> MakeBlockDesc(std::string_view objectClass, ClassDesc2& owner);

}  // namespace tavrik_plugin

// Attach the controls of four tables. Again and again they set the same values, and may be called for every object that is
// made.
TAVRIK_EXPORT void SetupTavrik_param_blk(ParamBlockDesc2* desc);
TAVRIK_EXPORT void SetupChassisObject_param_blk(ParamBlockDesc2* desc);
TAVRIK_EXPORT void SetupSuspension_param_blk(ParamBlockDesc2* desc);
TAVRIK_EXPORT void SetupWheel_param_blk(ParamBlockDesc2* desc);
