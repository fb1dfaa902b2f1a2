#pragma once
/// An open scene for the tests of dialogs, and a desktop on which nobody sees anything.

#include <gtest/gtest.h>

#include <QWidget>
#include <string>

#include "drive/null_canvas.h"
#include "drive/virtual_desktop.h"
#include "host/controls_file.h"
#include "host/sdk/max.h"
#include "rig/scene_node.h"
#include "studio/model/editor.h"
#include "tests/host/temp_folder.h"

namespace tavrik_studio::test {

class DialogScene : public testing::Test {
 protected:
    DialogScene();
    ~DialogScene() override;

    /// A level sample ground.
    INode& AddPlane(const char* name = "ground");
    /// The stock car, standing on the middle of a ground.
    INode& AddCar(INode& ground);
    /// The car locked, as a drive needs it.
    void Lock(INode& master);
    INode& Only(tavrik::ObjectClass objectClass) const;
    std::size_t Count(tavrik::ObjectClass objectClass) const;
    /// Bytes of the scene as it is.
    std::string Scene() const;
    /// Saves what a window looks like where TAVRIK_PICTURES names a folder.
    static void Picture(QWidget& widget, const char* name);

    tavrik::NullCanvas canvas;
    tavrik::VirtualWindows windows{canvas};
    tavrik::VirtualPad pad;
    tavrik::ControlsFile controls;
    mutable Editor editor;
    tavrik::test::TempFolder folder;
};

/// A file of the real input data.
std::string DataFile(const char* name);

}  // namespace tavrik_studio::test
