#pragma once
/// What the dialogs are put together from.

#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QStyledItemDelegate>
#include <QWidget>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>

class QFormLayout;

namespace tavrik_studio {

QString Text(const std::string& text);
QString TextOf(const std::filesystem::path& file);
std::filesystem::path PathOf(const QString& text);
/// Long paths may break at their slashes.
QString Breakable(QString text);
/// "12" or "12.5": as many digits as there are to be told, `most` behind the point.
QString Number(double value, int most);

/// The folder that the user was in last; at first the home folder.
std::filesystem::path LastFolder();
void RememberFolder(const std::filesystem::path& folder);
/// "Meshes (*.obj *.glb ...)" of all that can be read.
QString MeshFilter();

/// The Tab key goes from each to the next.
void ChainTabs(std::initializer_list<QWidget*> widgets);

/// Adds a row whose label belongs to the widget, and gives the widget the label's name.
void AddRow(QFormLayout& form, const QString& label, QWidget* widget);

/// Leaves some air around the lines of a table.
class RoomyRows final : public QStyledItemDelegate {
    Q_OBJECT
 public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

/// A sentence under a form, with a sign in front of it where something is wrong.
class MessageLine final : public QWidget {
    Q_OBJECT
 public:
    explicit MessageLine(QWidget* parent = nullptr);
    void Tell(const QString& sentence) { Set(sentence, false); }
    void Complain(const QString& sentence) { Set(sentence, true); }
    QString Sentence() const { return sentence_; }
    bool Complains() const { return complains_; }

 private:
    void Set(const QString& sentence, bool complains);

    QLabel *sign_, *text_;
    QString sentence_;
    bool complains_ = false;
};

/// The name of a file, typed or looked for.
class FileField final : public QWidget {
    Q_OBJECT
 public:
    enum class Kind { Open, Save };
    /// @param caption  of the window in which files are looked for
    FileField(Kind kind, const QString& caption, const QString& filter, QWidget* parent = nullptr);
    std::filesystem::path Path() const;
    void SetPath(const std::filesystem::path& file);
    QLineEdit& Edit() { return *edit_; }
    QPushButton& BrowseButton() { return *browse_; }

 signals:
    /// Another file is named; not at each letter.
    void Changed();

 private:
    void Browse();
    void TellIfOther();

    Kind kind_;
    QString caption_, filter_, told_;
    QLineEdit* edit_;
    QPushButton* browse_;
};

/// Metres to one unit of a file.
class UnitBox final : public QWidget {
    Q_OBJECT
 public:
    /// @param unset  what the first entry says, such as "From the file"
    explicit UnitBox(const QString& unset, QWidget* parent = nullptr);
    /// None for the first entry.
    std::optional<double> Metres() const;
    void SetMetres(const std::optional<double>& metres);

 signals:
    void Changed();

 private:
    QComboBox* unit_;
    QDoubleSpinBox* other_;
};

/// A number that may be left to be found out: 0 stands for that.
class OptionalNumber final : public QDoubleSpinBox {
    Q_OBJECT
 public:
    OptionalNumber(const QString& unset, double most, int decimals, const QString& suffix, QWidget* parent = nullptr);
    std::optional<double> Number() const;
};

}  // namespace tavrik_studio
