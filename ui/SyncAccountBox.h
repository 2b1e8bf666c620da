#pragma once

#include <QWidget>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

class QLabel;
class QLineEdit;
class QPushButton;

namespace qf {
struct LoginResult;
} // namespace qf

namespace qf::ui {

// The sync account in the Options dialog: the server's address, the user's name and password,
// and one button that logs in, or logs out while an account is kept. Logging in asks the server
// on a thread of its own so that the dialog stays in use; only the server, the user and the
// token the server answered are kept, never the password. Both take effect at once, whatever
// button ends the dialog.
class SyncAccountBox : public QWidget {
    Q_OBJECT

public:
    using Message = std::function<void(const QString& message)>;

    SyncAccountBox(Message tell, QWidget* parent);
    // A login still under way is stopped and waited for, and keeps nothing.
    ~SyncAccountBox() override;
    SyncAccountBox(const SyncAccountBox&) = delete;
    SyncAccountBox& operator=(const SyncAccountBox&) = delete;

    QLineEdit* server() const { return server_; }
    QLineEdit* user() const { return user_; }
    QLineEdit* password() const { return password_; }
    QPushButton* logButton() const { return logButton_; }
    // "Logged in as USER" while an account is kept; empty otherwise.
    QLabel* state() const { return state_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void LogInOrOut();
    void LogIn();
    void LoggedIn(const LoginResult& result, const std::u16string& server,
                  const std::u16string& user);
    // Shows the kept account, or the boxes to log in with when there is none.
    void ShowAccount();
    void EnableButton();

    Message tell_;
    QLineEdit* server_;
    QLineEdit* user_;
    QLabel* passwordLabel_;
    QLineEdit* password_;
    QLabel* state_;
    QPushButton* logButton_;
    bool kept_ = false;
    bool loggingIn_ = false;
    // Asked by the login's thread: set when the box goes.
    std::atomic<bool> closing_{false};
    std::jthread login_;
};

} // namespace qf::ui
