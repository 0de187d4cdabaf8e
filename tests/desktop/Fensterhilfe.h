#pragma once
// What the tests of windows share: waiting for a condition, controls by their names.

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QString>
#include <QWidget>
#include <functional>

namespace wendel {

// Runs the event loop until the condition holds, at most five seconds.
inline bool warte(const std::function<bool()>& bedingung) {
    QElapsedTimer uhr;
    uhr.start();
    while (!bedingung()) {
        if (uhr.elapsed() > 5000) return false;
        QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    }
    return true;
}

template <class T>
T& kind(const QObject& fenster, const char* name) {
    T* gefunden = fenster.findChild<T*>(QString::fromUtf8(name));
    EXPECT_NE(gefunden, nullptr) << name;
    return *gefunden;
}

}  // namespace wendel
