#pragma once
// A short text field for a date or a time of day: selected when it is entered, so that typing replaces it,
// stepped by Up, Down, PageUp and PageDown, completed when it is left. What a valid text is it is told.

#include <QLineEdit>
#include <optional>
#include <string>
#include <string_view>

namespace wendel {

class Zeitfeld final : public QLineEdit {
  public:
    struct Regeln {
        const char* muster;  // as wide as the field has to be
        std::string (*vervollstaendigt)(std::string_view);
        std::optional<std::string> (*verschoben)(std::string_view, int);
        int pfeil;  // steps of Up
        int seite;  // steps of PageUp
    };

    explicit Zeitfeld(const Regeln& regeln, QWidget* eltern);

    // Replaces the text as typing does: it can be undone. Selects it.
    void uebernimm(const QString& text);
    // The last text that was valid, as completed; empty when there was none.
    const std::string& letzterGueltiger() const { return letzter_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void keyPressEvent(QKeyEvent* ereignis) override;
    void focusInEvent(QFocusEvent* ereignis) override;
    void focusOutEvent(QFocusEvent* ereignis) override;

  private:
    void gehe(int schritte);

    Regeln regeln_;
    std::string letzter_;
};

}  // namespace wendel
