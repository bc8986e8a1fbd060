#pragma once

#include <QObject>

namespace tavren {

// The flood meter of one room or private window: a value that every request to the server
// raises and that the window drains over time. A full meter tells the window to hold the user
// back; how it drains and what it blocks belong to the window that shows it.
class FloodMeter : public QObject {
    Q_OBJECT
  public:
    explicit FloodMeter(int maximum = 100, QObject* parent = nullptr);

    int value() const { return value_; }
    int maximum() const { return maximum_; }
    bool full() const { return value_ >= maximum_; }

    // Both are kept within 0..maximum; a maximum below 1 counts as 1.
    void setValue(int value);
    void setMaximum(int maximum);
    // One step up, never past the maximum. False when the meter was already full.
    bool raise();

  signals:
    void valueChanged(int value);

  private:
    int value_ = 0;
    int maximum_;
};

}  // namespace tavren
