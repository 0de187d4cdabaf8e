#pragma once
// The state of the update on the session bus, for whoever has started it: bus name and interface
// "Drumlet.TvStatus", object "/tvstatus", the two properties below with their changes as the standard signal.
// Without a bus nothing happens, and nothing is said.

#include <QObject>
#include <QString>
#include <string>

namespace wendel::skarvel {

class TvStatus final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "Drumlet.TvStatus")
    Q_PROPERTY(QString StatusLabel READ statusLabel)
    Q_PROPERTY(QString StatusCode READ statusCode)

  public:
    static constexpr const char* kFertig = "-99";
    static constexpr const char* kAbgebrochen = "-98";

    TvStatus() = default;
    ~TvStatus() override;

    void veroeffentliche();
    bool istVeroeffentlicht() const { return veroeffentlicht_; }
    // code: per cent, or one of the two above.
    void setze(const std::string& label, const std::string& code);

    QString statusLabel() const { return label_; }
    QString statusCode() const { return code_; }

  private:
    QString label_;
    QString code_ = QStringLiteral("0");
    bool veroeffentlicht_ = false;
};

// A control line for the resident program, when it runs; nobody waits for an answer.
void sendeSteuerzeile(const std::string& zeile);

}  // namespace wendel::skarvel
