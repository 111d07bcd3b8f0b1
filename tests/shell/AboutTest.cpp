#include "Product.h"
#include "platform/engine/EngineError.h"
#include "shell/frmAbout.h"
#include "tests/support/WindowTest.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QUrl>

namespace {

/// Stands in for the desktop: has a mail program or not, and takes what it is asked to open.
class Desktop : public QObject {
    Q_OBJECT

public:
    explicit Desktop(QString folder)
        : m_folder(std::move(folder)) {
        QDir(m_folder).mkpath(QStringLiteral("applications"));
        for (const char* variable : {"PATH", "XDG_DATA_HOME", "XDG_DATA_DIRS"})
            qputenv(variable, QFile::encodeName(m_folder));
        QDesktopServices::setUrlHandler(QStringLiteral("mailto"), this, "Open");
    }
    ~Desktop() override {
        QDesktopServices::unsetUrlHandler(QStringLiteral("mailto"));
        qputenv("PATH", m_path);
    }

    void Write(const char* name, const QByteArray& content) const {
        const QString path = m_folder + u'/' + QString::fromLatin1(name);
        test::WriteBytes(path, content);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QUrl opened;

public Q_SLOTS:
    void Open(const QUrl& url) { opened = url; }

private:
    QString m_folder;
    QByteArray m_path = qgetenv("PATH");
};

class About : public test::Program {
protected:
    void SetUp() override { Start(); }
    static std::shared_ptr<forms::Form> Window() { return Last("frmAbout"); }
    static QString Texts() {
        QStringList texts;
        for (const char* field : {"txtVersion", "txtVersionBase", "txtUseBase", "txtCompileDate"})
            texts += Control<QLineEdit>(Window(), field).text();
        return texts.join(u'|');
    }
};

} // namespace

TEST_F(About, TellsVersionsFileAndDateAfreshAtEachOpening) {
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringLiteral("1.2.4|3|%1|02.08.2006").arg(Path()));
    for (const QLineEdit* field : Window()->Surface()->findChildren<QLineEdit*>())
        EXPECT_TRUE(field->isReadOnly()) << field->objectName().toStdString();
    EXPECT_EQ(Control<QLabel>(Window(), "Label2").text(), QString::fromUtf16(product::LegalLine));

    Store(QStringLiteral("/a&b.mdb"));
    Run(QStringLiteral("UPDATE v00 SET v00vrid = 2"));
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringLiteral("1.2.4|3|%1|02.08.2006").arg(Path())) << "open, it is only shown again";
    Window()->Unload();
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringLiteral("1.2.4|2|/a&b.mdb|02.08.2006"));
    EXPECT_EQ(Control(Window(), "txtUseBase").toolTip(), QStringLiteral("/a&b.mdb"));
}

TEST_F(About, ABrokenVersionTableLeavesTheLaterFieldsEmpty) {
    const QString broken = QStringLiteral("Нарушена целостность базы данных.");
    for (const auto& [sql, box] :
         {std::pair("INSERT INTO v00 (v00vrid) VALUES (4)", broken),
          {"DELETE FROM v00", broken},
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
    Desktop desktop(Path(QStringLiteral("desktop")));
    Choose("mnuHelpAbout");
    const auto asks = [](const char* says) { return "#!/bin/sh\n" + QByteArray(says) + '\n'; };
    const std::tuple<const char*, const char*, QByteArray, bool> rows[] = {
        {"no desktop to ask", "x", "", false},
        {"no program chosen", "xdg-mime", asks("exit 0"), false},
        {"the chosen program is gone", "xdg-mime",
         asks("[ \"$3\" = x-scheme-handler/mailto ] && echo mailer.desktop"), false},
        {"a program", "applications/mailer.desktop", "[Desktop Entry]\n", true},
    };
    for (const auto& [name, file, content, opens] : rows) {
        desktop.Write(file, content);
        test::Answers answers;
        if (!opens)
            answers.BoxStarting(test::ErrorStart(QStringLiteral("frmAbout функция lblMailTo_Click:"), 32003) +
                                    QStringLiteral("Не удалось войти в почтовую систему"),
                                forms::Icon::Critical);
        ClickButton(Window(), "lblMailTo");
        EXPECT_TRUE(answers.Done()) << name;
        EXPECT_EQ(desktop.opened.isValid(), opens) << name;
    }
    const QString address = QString::fromUtf16(product::AuthorMail);
    const QString opened = QStringLiteral("\"Orlenta+\" <%1>").arg(address);
    EXPECT_EQ(desktop.opened.path(QUrl::FullyDecoded), opened);
    EXPECT_FALSE(desktop.opened.toEncoded().contains('+'));
    desktop.opened.clear();
    Control(Window(), "lblMailTo").setFocus();
    Press(Qt::Key_Return);
    EXPECT_EQ(desktop.opened.path(QUrl::FullyDecoded), opened);
    EXPECT_EQ(Children(), QStringList({"frmAbout"}));
}

#include "AboutTest.moc"
