#include <CorvantaSdkVideo/Editor/EditorTexts.hpp>

#include <QCoreApplication>
#include <QFile>
#include <QLocale>
#include <QStringList>
#include <QXmlStreamReader>

#include <memory>

namespace corvanta {

namespace {

QString keyOf(const QString& context, const QString& source) { return context + QLatin1Char('\n') + source; }

QString chosenLanguage() {
    for (const QString& name : QLocale().uiLanguages()) {
        const QString language = name.section(QLatin1Char('-'), 0, 0);
        if (language == QLatin1String("en") ||
            QFile::exists(QStringLiteral(":/corvanta/texts/%1.ts").arg(language))) {
            return language;
        }
    }
    return {};
}

} // namespace

void EditorTexts::install() {
    // The application's, and gone with it.
    static QPointer<EditorTexts> texts;
    static QString installed;
    QCoreApplication* const application = QCoreApplication::instance();
    const QString language = chosenLanguage();
    if (texts && installed == language) {
        return;
    }
    if (!texts) {
        texts = std::make_unique<EditorTexts>().release();
        texts->setParent(application);
    }
    QCoreApplication::removeTranslator(texts);
    installed = language;
    if (texts->read(language)) {
        QCoreApplication::installTranslator(texts);
    }
}

bool EditorTexts::read(const QString& language) {
    texts_.clear();
    QFile file(QStringLiteral(":/corvanta/texts/%1.ts").arg(language));
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    QXmlStreamReader reader(&file);
    QString context;
    QString source;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (reader.name() == QLatin1String("name")) {
            context = reader.readElementText();
        } else if (reader.name() == QLatin1String("source")) {
            source = reader.readElementText();
        } else if (reader.name() == QLatin1String("translation")) {
            texts_.insert(keyOf(context, source), reader.readElementText());
        }
    }
    return !isEmpty();
}

QString EditorTexts::translate(const char* context, const char* sourceText, const char* /*disambiguation*/,
                               int /*n*/) const {
    return texts_.value(keyOf(QString::fromUtf8(context), QString::fromUtf8(sourceText)));
}

} // namespace corvanta
