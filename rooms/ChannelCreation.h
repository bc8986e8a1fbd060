#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

namespace tavren {

class ServerLink;

// The creation form's button: the checks, a short progress display, then (2, 5) name ":"
// password ":" topic with the name and the topic trimmed and the password as typed (empty when
// the password option is off). The progress runs 51 steps of 10 ms, the bar to 100 while the
// label counts "Creating...(0%)" to "Creating...(50%)" (the label ends at half of what the bar
// shows; that is how the form has always looked). It is driven by a timer, so nothing waits
// in a nested event loop.
class ChannelCreation : public QObject {
    Q_OBJECT
  public:
    static constexpr int kLastStep = 50;
    static constexpr int kStepMs = 10;

    explicit ChannelCreation(ServerLink& link, QObject* parent = nullptr);

    // The checks, in their order; the first one that fails gives its message, all good gives
    // an empty text. A password may not hold ":" either, since it ends the field on the wire.
    static QString check(const QString& name, bool passwordOn, const QString& password);

    // Starts the progress and the request; false when a check failed (its message is in
    // `problem`) or a creation is running already.
    bool start(const QString& name, const QString& topic, bool passwordOn, const QString& password,
               QString* problem = nullptr);
    bool running() const { return timer_.isActive(); }
    // Stops a running progress before anything is sent (the form was closed).
    void cancel() { timer_.stop(); }

  signals:
    // `value` is the bar (0..100); `label` the text beside it.
    void progress(int value, const QString& label);
    // The bar is hidden again, the label reads "Create Channel", and the request has gone.
    void finished();

  private:
    void step();

    ServerLink& link_;
    QTimer timer_;
    int step_ = 0;
    QString payload_;
};

}  // namespace tavren
