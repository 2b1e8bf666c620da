#pragma once

#include <QGuiApplication>

namespace qf::ui {

// The wait cursor around a long action on the main thread, restored when the object goes or
// earlier, before a message is shown.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { Restore(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

    void Restore() {
        if (shown_) {
            QGuiApplication::restoreOverrideCursor();
            shown_ = false;
        }
    }

private:
    bool shown_ = true;
};

} // namespace qf::ui
