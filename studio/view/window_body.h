#pragma once

#include "studio/view/view_body.h"

namespace tavrik_studio {

/// Whether windows of this desktop can show OpenGL 3.3. Looked for once.
bool CanDrawInWindows();
std::unique_ptr<ViewBody> MakeWindowBody(ViewBodyTasks tasks, QWidget* parent);

}  // namespace tavrik_studio
