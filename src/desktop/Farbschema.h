#pragma once
// Follows a desktop that only says "rather dark" or "rather light" (the settings portal on the session bus)
// where the toolkit has not taken the desktop's colours by itself. Where it has, and without a bus or a
// portal, nothing happens.

#include <QDBusMessage>
#include <QObject>

namespace wendel {

class Farbschema final : public QObject {
    Q_OBJECT

  public:
    enum class Beginn { MitFenster, Versteckt };

    // Asks. A program that begins with a window waits for the answer for a moment at most, so that the window
    // does not come up light and turn dark then; a later answer and each change count as well. Before the
    // first window, after the application.
    explicit Farbschema(Beginn beginn);

  private Q_SLOTS:
    // The whole message: the bus library refuses slots with a variant until the first variant has come.
    void geaendert(const QDBusMessage& meldung);

  private:
    void frage(Beginn beginn);
    void wende(const QVariant& wert);

    bool dunkel_ = false;
};

}  // namespace wendel
