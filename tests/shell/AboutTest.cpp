#include "Product.h"
#include "platform/engine/EngineError.h"
#include "shell/frmAbout.h"
#include "tests/shell/StartedProgram.h"
#include "tests/support/WindowWalk.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>
#include <QtTest>

using forms::Icon;

namespace {

const QString Broken = QStringLiteral("Нарушена целостность базы данных.");
const QString MailHead = QStringLiteral("frmAbout функция lblMailTo_Click:");

/// Stands in for the desktop: knows a mail program or not, and takes what it is asked to open.
class Desktop : public QObject {
    Q_OBJECT

public:
    explicit Desktop(const QString& folder) {
        QDir(folder).mkpath(QStringLiteral("applications"));
        Write(folder + QStringLiteral("/xdg-mime"), "#!/bin/sh\necho mailer.desktop\n");
        qputenv("PATH", QFile::encodeName(folder));
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder));
        m_entry = folder + QStringLiteral("/applications/mailer.desktop");
        QDesktopServices::setUrlHandler(QStringLiteral("mailto"), this, "Open");
    }
    ~Desktop() override {
        QDesktopServices::unsetUrlHandler(QStringLiteral("mailto"));
        qputenv("PATH", m_path);
    }

    void InstallMailProgram() const { Write(m_entry, "[Desktop Entry]\n"); }
    QUrl opened;

public Q_SLOTS:
    void Open(const QUrl& url) { opened = url; }

private:
    static void Write(const QString& path, const QByteArray& content) {
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(content);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QString m_entry;
    QByteArray m_path = qgetenv("PATH");
};

class About : public test::Program {
protected:
    static QString Text(const char* field) {
        return forms::Form::Default<frmAbout>()
            ->Surface()
            ->findChild<QLineEdit*>(QString::fromLatin1(field))
            ->text();
    }
    static QStringList Texts() {
        return {Text("txtVersion"), Text("txtVersionBase"), Text("txtUseBase"), Text("txtCompileDate")};
    }
    static QWidget& Link() {
        return *forms::Form::Default<frmAbout>()->Surface()->findChild<QWidget*>(QStringLiteral("lblMailTo"));
    }
};

} // namespace

TEST_F(About, TellsVersionsFileAndDateAfreshAtEachOpening) {
    Start();
    const test::Answers answers;
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringList({"1.2.4", "3", Path(), "02.08.2006"}));
    const QWidget& surface = *forms::Form::Default<frmAbout>()->Surface();
    EXPECT_EQ(test::WindowFaults(surface), QStringList());
    for (const QLineEdit* field : surface.findChildren<QLineEdit*>())
        EXPECT_TRUE(field->isReadOnly()) << field->objectName().toStdString();
    EXPECT_EQ(surface.findChild<QPushButton*>(QStringLiteral("lblMailTo"))->text(),
              QString::fromUtf16(product::AuthorMail));
    EXPECT_EQ(surface.findChild<QLabel*>(QStringLiteral("Label2"))->text(),
              QString::fromUtf16(product::LegalLine));

    Store(QStringLiteral("/a&b.mdb"));
    gDatabase->Execute(QStringLiteral("UPDATE v00 SET v00vrid = 2"));
    Choose("mnuHelpAbout");
    EXPECT_EQ(Text("txtVersionBase"), QStringLiteral("3")) << "an open window is only shown again";
    forms::Form::Default<frmAbout>()->Unload();
    Choose("mnuHelpAbout");
    EXPECT_EQ(Texts(), QStringList({"1.2.4", "2", "/a&b.mdb", "02.08.2006"}));
    const auto* path = forms::Form::Default<frmAbout>()->Surface()->findChild<QWidget*>("txtUseBase");
    EXPECT_EQ(path->toolTip(), QStringLiteral("/a&b.mdb"));
}

TEST_F(About, ABrokenVersionTableLeavesTheLaterFieldsEmpty) {
    Start();
    const struct {
        const char* sql;
        QString box;
    } rows[] = {
        {"DELETE FROM v00", Broken},
        {"INSERT INTO v00 (v00vrid) SELECT a FROM two", Broken},
        {"DROP TABLE v00",
         QStringLiteral("frmAbout функция Form_Load:\r\nпроизошла ошибка №%1 ").arg(engine::UnknownTable)},
    };
    gDatabase->Execute(QStringLiteral("CREATE TABLE two (a BYTE)"));
    gDatabase->Execute(QStringLiteral("INSERT INTO two (a) VALUES (1)"));
    gDatabase->Execute(QStringLiteral("INSERT INTO two (a) VALUES (2)"));
    for (const auto& row : rows) {
        gDatabase->Execute(QString::fromLatin1(row.sql), engine::dbFailOnError);
        test::Answers answers;
        answers.BoxStarting(row.box, Icon::Critical);
        Choose("mnuHelpAbout");
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(Children(), QStringList({"frmAbout"}));
        EXPECT_EQ(Texts(), QStringList({"1.2.4", "", "", ""})) << row.sql;
        forms::Form::Default<frmAbout>()->Unload();
    }
}

TEST_F(About, TheLinkHandsNameAndAddressToTheMailProgram) {
    Start();
    Desktop desktop(Path(QStringLiteral("desktop")));
    Choose("mnuHelpAbout");
    {
        test::Answers answers;
        answers.BoxStarting(
            MailHead + QStringLiteral("\r\nпроизошла ошибка №32003 Не удалось войти в почтовую систему"),
            Icon::Critical);
        QTest::mouseClick(&Link(), Qt::LeftButton);
        EXPECT_TRUE(answers.Done());
        EXPECT_FALSE(desktop.opened.isValid());
    }
    desktop.InstallMailProgram();
    const test::Answers answers;
    const QString recipient =
        QStringLiteral("\"Orlenta+\" <") + QString::fromUtf16(product::AuthorMail) + u'>';
    QTest::mouseClick(&Link(), Qt::LeftButton);
    EXPECT_EQ(desktop.opened.path(QUrl::FullyDecoded), recipient);
    desktop.opened.clear();
    QTest::keyClick(&Link(), Qt::Key_Return);
    EXPECT_EQ(desktop.opened.path(QUrl::FullyDecoded), recipient);
    EXPECT_EQ(Children(), QStringList({"frmAbout"}));
}

#include "AboutTest.moc"
