#pragma once

#include <QHash>
#include <QPointer>
#include <QString>
#include <QTranslator>

namespace corvanta {

/// The editor's texts in the language that the user reads, out of files in the format of Qt's own tools.
/// English is what the texts are written in, and what every other language gets.
class EditorTexts : public QTranslator {
    Q_OBJECT

  public:
    /// Takes the first language of QLocale's that there are texts for, and installs them in the application
    /// for good; when that has changed since, those. On the Qt thread.
    static void install();

    /// Reads the texts of a language, such as "de". False, and empty, if there are none.
    bool read(const QString& language);

    bool isEmpty() const override { return texts_.isEmpty(); }
    QString translate(const char* context, const char* sourceText, const char* disambiguation = nullptr,
                      int n = -1) const override;

  private:
    QHash<QString, QString> texts_;
};

} // namespace corvanta
