#include "ui/SyncAccountBox.h"

#include "sync/GReaderClient.h"
#include "sync/SyncAccount.h"
#include "ui/DialogParts.h"
#include "ui/QtText.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace qf::ui {

SyncAccountBox::SyncAccountBox(Message tell, QWidget* parent)
    : QWidget(parent), tell_(std::move(tell)), server_(new QLineEdit(this)),
      user_(new QLineEdit(this)), passwordLabel_(new QLabel(QStringLiteral("Password:"), this)),
      password_(new QLineEdit(this)), state_(new QLabel(this)),
      logButton_(new QPushButton(QStringLiteral("Log in"), this)) {
    server_->setPlaceholderText(QStringLiteral("https://example.org/api/greader.php"));
    server_->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    user_->setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
    password_->setEchoMode(QLineEdit::Password);
    state_->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(BoldLabel(QStringLiteral("Sync account:"), this));
    auto* form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    form->addRow(QStringLiteral("Server:"), server_);
    form->addRow(QStringLiteral("User:"), user_);
    form->addRow(passwordLabel_, password_);
    layout->addLayout(form);
    auto* row = new QHBoxLayout;
    row->addWidget(state_, 1);
    row->addWidget(logButton_);
    layout->addLayout(row);

    connect(logButton_, &QPushButton::clicked, this, &SyncAccountBox::LogInOrOut);
    connect(server_, &QLineEdit::textChanged, this, &SyncAccountBox::EnableButton);
    connect(user_, &QLineEdit::textChanged, this, &SyncAccountBox::EnableButton);
    for (QLineEdit* box : {server_, user_, password_}) {
        box->installEventFilter(this);
    }
    ShowAccount();
}

SyncAccountBox::~SyncAccountBox() {
    closing_ = true;
    if (login_.joinable()) {
        login_.join();
    }
}

bool SyncAccountBox::eventFilter(QObject* watched, QEvent* event) {
    // Return in the boxes logs in, rather than ending the dialog with Done before the login.
    if (event->type() == QEvent::KeyPress && !kept_) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            if (logButton_->isEnabled()) {
                LogIn();
            }
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SyncAccountBox::LogInOrOut() {
    if (!kept_) {
        LogIn();
        return;
    }
    if (!ForgetSyncAccount()) {
        tell_(QStringLiteral("The account could not be removed from the settings file."));
    }
    ShowAccount();
}

void SyncAccountBox::LogIn() {
    std::u16string server = server_->text().trimmed().toStdU16String();
    std::u16string user = user_->text().trimmed().toStdU16String();
    std::u16string password = password_->text().toStdU16String();
    loggingIn_ = true;
    logButton_->setText(QStringLiteral("Logging in..."));
    for (QLineEdit* box : {server_, user_, password_}) {
        box->setEnabled(false);
    }
    EnableButton();
    // The answer comes back as an event of this box, which is dropped if the box is gone by then;
    // the box waits for the thread before it goes.
    login_ = std::jthread([this, server = std::move(server), user = std::move(user),
                           password = std::move(password)] {
        LoginResult result =
            GReaderClient::Login(server, user, password, [this] { return closing_.load(); });
        QMetaObject::invokeMethod(
            this,
            [this, result = std::move(result), server, user] { LoggedIn(result, server, user); },
            Qt::QueuedConnection);
    });
}

void SyncAccountBox::LoggedIn(const LoginResult& result, const std::u16string& server,
                              const std::u16string& user) {
    login_.join();
    loggingIn_ = false;
    for (QLineEdit* box : {server_, user_, password_}) {
        box->setEnabled(true);
    }
    if (!result.ok) {
        tell_(QStringLiteral("Login failed: %1").arg(ToQString(result.reason)));
    } else if (!SaveSyncAccount({server, user, result.authToken})) {
        tell_(QStringLiteral("Login failed: the settings file could not be written."));
    } else {
        password_->clear();
    }
    ShowAccount();
}

void SyncAccountBox::ShowAccount() {
    const std::optional<SyncAccount> account = LoadSyncAccount();
    kept_ = account.has_value();
    if (account) {
        server_->setText(ToQString(account->server));
        user_->setText(ToQString(account->user));
    }
    server_->setReadOnly(kept_);
    user_->setReadOnly(kept_);
    passwordLabel_->setVisible(!kept_);
    password_->setVisible(!kept_);
    state_->setText(kept_ ? QStringLiteral("Logged in as %1").arg(user_->text()) : QString());
    logButton_->setText(kept_ ? QStringLiteral("Log out") : QStringLiteral("Log in"));
    EnableButton();
}

void SyncAccountBox::EnableButton() {
    logButton_->setEnabled(!loggingIn_ && (kept_ || (!server_->text().trimmed().isEmpty() &&
                                                     !user_->text().trimmed().isEmpty())));
}

} // namespace qf::ui
