#pragma once
// The toolkit's own texts in German: context menus of text fields, names of keys, what a screen reader hears
// of buttons. Without the toolkit's translation files, which a machine may lack.

#include <QTranslator>

namespace wendel {

class DeutscheTexte final : public QTranslator {
  public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* bereich, const char* text, const char* unterscheidung,
                      int anzahl) const override;
};

}  // namespace wendel
