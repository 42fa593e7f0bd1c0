#include <CorvantaSdkVideo/Editor/EditorTexts.hpp>

#include <QCoreApplication>
#include <QFile>
#include <QLocale>
#include <QPointer>
#include <QStringList>
#include <QTranslator>

#include <memory>

namespace corvanta {

namespace {

QString fileOf(const QString& language) { return QStringLiteral(":/corvanta/texts/%1.qm").arg(language); }

// Empty for English, also where another language comes behind it.
QString chosenFile() {
    for (const QString& name : QLocale().uiLanguages()) {
        const QString language = name.section(QLatin1Char('-'), 0, 0);
        if (language == QLatin1String("en")) {
            return {};
        }
        if (QFile::exists(fileOf(language))) {
            return fileOf(language);
        }
    }
    return {};
}

} // namespace

void installEditorTexts() {
    // The application's, and gone with it.
    static QPointer<QTranslator> texts;
    if (!texts) {
        texts = std::make_unique<QTranslator>().release();
        texts->setParent(QCoreApplication::instance());
    }
    const QString file = chosenFile();
    if (texts->filePath() == file) {
        return;
    }
    QCoreApplication::removeTranslator(texts);
    if (texts->load(file)) {
        QCoreApplication::installTranslator(texts);
    }
}

} // namespace corvanta
