#pragma once

#include <QComboBox>

namespace tavren {

// One sound slot's drop-down: "*Choose File*", "x-Disabled-x" and, while the slot plays a file,
// that file. A full path rarely fits the box and its start says nothing, so the box shows the
// file's name (shortened in the middle if even that does not fit) and the whole path as its
// tooltip. Picking "*Choose File*" is the caller's to answer (activated(0)); the box keeps the
// slot's file until setValue() says otherwise.
class SoundFileBox : public QComboBox {
    Q_OBJECT
  public:
    static constexpr int kChooseFileIndex = 0;
    static constexpr int kDisabledIndex = 1;
    static constexpr int kFileIndex = 2;

    explicit SoundFileBox(QWidget* parent = nullptr);

    // A file path, or the disabled text.
    void setValue(const QString& value);
    QString value() const { return value_; }
    // What the closed box shows for `value` when there is room.
    static QString shownName(const QString& value);

  signals:
    void valueChanged(const QString& value);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void onIndexChanged(int index);
    void showValue();

    QString value_;
};

}  // namespace tavren
