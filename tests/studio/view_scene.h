#pragma once
/// A view without a screen, and things to look at in it.

#include <gtest/gtest.h>

#include <QImage>
#include <QTest>

#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "studio/view/view_widget.h"

namespace tavrik_studio::test {

Matrix3 At(float x, float y, float z);

class ViewScene : public testing::Test {
 public:
    ViewScene();

    /// A block around a place, as wide as `size` in all directions.
    INode& AddBlock(const Point3& middle, float size, const Point3& color);
    INode& Add(tavrik::ObjectClass objectClass, float x, float y, float z = 0.0f);
    /// Looks straight down on the origin; a unit is `scale` pixels.
    void LookDown(float scale = 1.0f);
    /// The pixel at which a place is seen.
    QPoint PixelOf(const Point3& world);
    QColor ColorAt(const Point3& world);

    void Press(const QPoint& at, Qt::KeyboardModifiers keys = {}, Qt::MouseButton button = Qt::LeftButton);
    void Move(const QPoint& at, Qt::KeyboardModifiers keys = {});
    void Release(const QPoint& at, Qt::KeyboardModifiers keys = {}, Qt::MouseButton button = Qt::LeftButton);
    void Click(const QPoint& at, Qt::KeyboardModifiers keys = {});
    void Drag(const QPoint& from, const QPoint& to, Qt::KeyboardModifiers keys = {}, Qt::MouseButton button = Qt::LeftButton);
    QString LastSaid() const { return said; }

    Editor editor;
    Commands commands;
    ViewWidget view{editor, commands};
    QString said;
};

/// The node that was there before a way back.
INode* Again(ULONG handle);

}  // namespace tavrik_studio::test
