#pragma once

#include <QString>
#include <QUrl>
#include <functional>

class QDialog;
class QWidget;

namespace qf {
class Channel;
class ChannelStore;
} // namespace qf

namespace qf::ui {

struct DeviceFamily;

// What the frame asks of the user and of the desktop, replaceable so that tests answer instead
// of a person.
struct UserDialogs {
    // A question with Yes and No; true for Yes.
    std::function<bool(const QString& question)> ask;
    // A message with an OK button.
    std::function<void(const QString& message)> tell;
    // The About box.
    std::function<void()> about;
    // Hands an address to the desktop (browser, help viewer); false when nothing took it.
    std::function<bool(const QUrl& address)> open;
    // Runs one of the program's own dialogs modally and answers its result code.
    std::function<int(QDialog& dialog)> run;
};

// The frame's dialogs: the questions and messages, the About box, the desktop's browser, and
// the program's own dialogs run over the main window. The hooks a caller leaves empty are the
// real ones.
class AppDialogs {
public:
    explicit AppDialogs(UserDialogs hooks);

    bool Ask(const QString& question) const { return hooks_.ask(question); }
    void Tell(const QString& message) const { hooks_.tell(message); }
    void About() const { hooks_.about(); }
    bool Open(const QUrl& address) const { return hooks_.open(address); }

    // Runs the add-channel wizard; true when it added to the store.
    bool AddChannels(ChannelStore& store, const DeviceFamily& family, QWidget& window) const;
    // Runs the channel's properties dialog; true when the user accepted the changes.
    bool EditChannel(Channel& channel, const ChannelStore& store, QWidget& window) const;
    void ChooseOptions(ChannelStore& store, QWidget& window) const;

private:
    // Runs one of the program's dialogs and gives `window` the keyboard back afterwards.
    int Run(QDialog& dialog, QWidget& window) const;

    UserDialogs hooks_;
};

} // namespace qf::ui
