#pragma once

#include <QObject>
#include <QString>
#include <functional>

class QLocalServer;

namespace qf::ui {

// Keeps one program running per user and settings: a second start asks the first to come to the
// front and ends.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    // The name of this user's instance for the settings file in use.
    static QString DefaultName();

    explicit SingleInstance(QString name = DefaultName());
    ~SingleInstance() override;

    // Asks a running instance to come to the front; true when one answered.
    bool ActivateRunning();
    // Becomes the running instance; `onActivate` runs whenever a later start asks.
    bool Listen(std::function<void()> onActivate);

private:
    QString name_;
    QLocalServer* server_ = nullptr;
    std::function<void()> onActivate_;
};

} // namespace qf::ui
