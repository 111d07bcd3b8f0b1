#include "Product.h"
#include "platform/engine/EngineError.h"
#include "shell/frmAbout.h"
#include "tests/support/WindowTest.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QUrl>

namespace {

/// Stands in for the mail program: takes what it is asked to open.
class Mailer : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void Open(const QUrl& url) { opened = url; }

public:
    QUrl opened;
};

class About : public test::Program {
protected:
    void SetUp() override { Start(); }
    static std::shared_ptr<forms::Form> Window() { return Last("frmAbout"); }
    static QString Texts() {
        QStringList texts;
        for (const char* field : {"txtVersion", "txtVersionBase", "txtUseBase", "txtCompileDate"}) {
            const auto& box = Control<QLineEdit>(Window(), field);
            EXPECT_TRUE(box.isReadOnly()) << field;
            texts += box.text();
        }
        return texts.join(u'|');
    }
};

} // namespace

TEST_F(About, TellsVersionsFileAndDateAfreshAtEachOpening) {
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringLiteral("1.2.4|3|%1|02.08.2006").arg(Path()));
    Store(QStringLiteral("/a&b.mdb"));
    Run(QStringLiteral("UPDATE v00 SET v00vrid = 2"));
    Window()->Unload();
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringLiteral("1.2.4|2|/a&b.mdb|02.08.2006"));
    EXPECT_EQ(Control(Window(), "txtUseBase").toolTip(), QStringLiteral("/a&b.mdb"));
}

TEST_F(About, ABrokenVersionTableLeavesTheLaterFieldsEmpty) {
    for (const auto& [sql, box] :
         {std::pair("INSERT INTO v00 (v00vrid) VALUES (4)",
                    QStringLiteral("Нарушена целостность базы данных.")),
          {"DROP TABLE v00", test::ErrorStart(QStringLiteral("frmAbout функция Form_Load:"), 3078)}}) {
        Run(QString::fromLatin1(sql));
        test::Answers answers;
        answers.BoxStarting(box, forms::Icon::Critical);
        Choose("mnuHelpAbout");
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(Texts(), QStringLiteral("1.2.4|||")) << sql;
        Window()->Unload();
    }
}

TEST_F(About, TheLinkHandsNameAndAddressToTheMailProgram) {
    const QString folder = Path(QStringLiteral("desktop"));
    const auto write = [&folder](const char* name, const QByteArray& content) {
        const QString path = folder + u'/' + QString::fromLatin1(name);
        QDir().mkpath(QFileInfo(path).path());
        test::WriteBytes(path, content);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    };
    for (const char* variable : {"PATH", "XDG_DATA_HOME", "XDG_DATA_DIRS"})
        qputenv(variable, QFile::encodeName(folder));
    Mailer mailer;
    QDesktopServices::setUrlHandler(QStringLiteral("mailto"), &mailer, "Open");
    Choose("mnuHelpAbout");
    write("xdg-mime", "#!/bin/sh\necho mailer.desktop\n"); // which is gone
    {
        test::Answers answers;
        answers.BoxStarting(test::ErrorStart(QStringLiteral("frmAbout функция lblMailTo_Click:"), 32003) +
                                QStringLiteral("Не удалось войти в почтовую систему"),
                            forms::Icon::Critical);
        ClickButton(Window(), "lblMailTo");
        EXPECT_FALSE(mailer.opened.isValid());
    }
    write("applications/mailer.desktop", "[Desktop Entry]\n");
    Control(Window(), "lblMailTo").setFocus();
    Press(Qt::Key_Return);
    EXPECT_EQ(mailer.opened.path(QUrl::FullyDecoded),
              QStringLiteral("\"Orlenta+\" <%1>").arg(QString::fromUtf16(product::AuthorMail)));
    EXPECT_FALSE(mailer.opened.toEncoded().contains('+'));
    runtime::MapiMessage quoted;
    quoted.RecipDisplayName = QStringLiteral("a\"b");
    quoted.Send(true);
    EXPECT_EQ(mailer.opened.path(QUrl::FullyDecoded), QStringLiteral("\"a\\\"b\" <>"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("mailto"));
}

#include "AboutTest.moc"
