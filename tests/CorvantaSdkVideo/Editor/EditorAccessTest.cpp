#include "CorvantaSdkVideo/Editor/ScreenFixture.hpp"

#include <CorvantaSdkVideo/Editor/EditorTexts.hpp>
#include <CorvantaSdkVideo/Editor/Playhead.hpp>

#include <QAccessible>
#include <QDirIterator>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QTranslator>

#include <gmock/gmock.h>

namespace corvanta {
namespace {

using testing::IsSupersetOf;

class EditorAccessTest : public test::ScreenFixture {
  protected:
    using Control = std::pair<std::string, QAccessible::Role>;

    ~EditorAccessTest() override {
        QLocale::setDefault(QLocale::c());
        installEditorTexts();
    }

    std::vector<QAccessibleInterface*> shownInterfaces() const {
        std::vector<QAccessibleInterface*> interfaces{QAccessible::queryAccessibleInterface(window_)};
        for (std::size_t index = 0; index < interfaces.size(); ++index) {
            for (int child = 0; child < interfaces[index]->childCount(); ++child) {
                QAccessibleInterface* const below = interfaces[index]->child(child);
                if (below != nullptr && !below->state().invisible) {
                    interfaces.push_back(below);
                }
            }
        }
        return interfaces;
    }
    QAccessibleInterface* interfaceOf(const std::string& name) const {
        for (QAccessibleInterface* const shown : shownInterfaces()) {
            if (shown->text(QAccessible::Name).toStdString() == name) {
                return shown;
            }
        }
        ADD_FAILURE() << "nothing is called " << name;
        return nullptr;
    }
    std::vector<Control> controls() const {
        std::vector<Control> found;
        for (QAccessibleInterface* const shown : shownInterfaces()) {
            const std::string name = shown->text(QAccessible::Name).toStdString();
            found.emplace_back(name, shown->role());
            EXPECT_TRUE(!name.empty() || !shown->state().focusable) << "a control without a name";
        }
        return found;
    }
};

TEST_F(EditorAccessTest, NamesEveryControlAndTellsItsRoleAndValue) {
    present();
    ASSERT_TRUE(isFileRead());
    const auto has = [this](const std::vector<Control>& expected) {
        EXPECT_TRUE(eventually([&] { return testing::Value(controls(), IsSupersetOf(expected)); }))
            << testing::PrintToString(controls());
    };
    has({{"Close", QAccessible::Button},
         {"Continue", QAccessible::Button},
         {"Play", QAccessible::Button},
         {"Video", QAccessible::Graphic},
         {"Start", QAccessible::Slider},
         {"End", QAccessible::Slider},
         {"Position", QAccessible::Slider},
         {"Trim", QAccessible::PageTab},
         {"Sound", QAccessible::PageTab},
         {"Rotation", QAccessible::PageTab}});
    QAccessibleInterface* const start = interfaceOf("Start");
    start->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_NEAR(start->valueInterface()->currentValue().toDouble(), model().trimmerStart(), 1e-9);
    EXPECT_GT(model().trimmerStart(), 0);
    EXPECT_EQ(interfaceOf("End")->valueInterface()->maximumValue().toDouble(), model().videoDuration());
    interfaceOf("Position")->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_GT(interfaceOf("Position")->valueInterface()->currentValue().toDouble(), model().trimmerStart());
    has({{"Reset", QAccessible::Button}, {"Kept length: 4.0 s", QAccessible::StaticText}});

    click("Sound");
    has({{"Volume 100%", QAccessible::Slider},
         {"Mute", QAccessible::Button},
         {"Waveform", QAccessible::Graphic}});
    click("Rotation");
    has({{"Rotate left", QAccessible::Button}, {"Rotate right", QAccessible::Button}});
    click("Close");
    has({{"Discard the changes? The video stays as it was.", QAccessible::Dialog},
         {"Keep editing", QAccessible::Button},
         {"Discard", QAccessible::Button}});
}

TEST_F(EditorAccessTest, TranslatesEveryTextIntoEachLanguage) {
    const QRegularExpression text(QStringLiteral(R"x(qsTr\("([^"]*)"\))x"));
    for (const char* const language : {"de", "es", "fr"}) {
        QTranslator texts;
        ASSERT_TRUE(texts.load(QStringLiteral(":/corvanta/texts/%1.qm").arg(QLatin1String(language))));
        int count = 0;
        QDirIterator files(QStringLiteral(":/qt-project.org/imports/CorvantaSdkVideo/Editor/Views"));
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray context = files.fileInfo().completeBaseName().toUtf8();
            const QString source = QString::fromUtf8(file.readAll());
            for (auto found = text.globalMatch(source); found.hasNext(); ++count) {
                const QString english = found.next().captured(1);
                const QString translated = texts.translate(context.constData(), english.toUtf8().constData());
                EXPECT_EQ(translated.contains(QStringLiteral("%1")), english.contains(QStringLiteral("%1")));
                EXPECT_FALSE(translated.isEmpty())
                    << language << ": " << context.toStdString() << ": " << english.toStdString();
            }
        }
        EXPECT_GE(count, 35);
    }
    for (const auto& [locale, button] : {std::pair("de_AT", "Weiter"), std::pair("es", "Continuar"),
                                         std::pair("fr_CA", "Continuer"), std::pair("it", "Continue")}) {
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        present();
        EXPECT_TRUE(isShown(button)) << locale;
        QTest::keyClick(window_, Qt::Key_Escape);
        ASSERT_TRUE(isClosed());
    }
}

} // namespace
} // namespace corvanta
