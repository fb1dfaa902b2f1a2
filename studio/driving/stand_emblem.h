#pragma once

#include <QWidget>

namespace tavrik_studio {

/// A still picture of a damper with its spring, for the corner of the stand's dialog.
class StandEmblem final : public QWidget {
    Q_OBJECT
 public:
    explicit StandEmblem(QWidget* parent);
    QSize sizeHint() const override { return {150, 190}; }
    QSize minimumSizeHint() const override { return {110, 150}; }

 protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace tavrik_studio
