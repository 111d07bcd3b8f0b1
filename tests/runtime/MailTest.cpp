#include "platform/runtime/Mail.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QUrl>

namespace {

/// Takes the place of the desktop that starts the mail program.
class Desktop : public QObject {
    Q_OBJECT

public:
    Desktop() { QDesktopServices::setUrlHandler(QStringLiteral("mailto"), this, "Open"); }
    ~Desktop() override { QDesktopServices::unsetUrlHandler(QStringLiteral("mailto")); }
    QUrl opened;

public Q_SLOTS:
    void Open(const QUrl& url) { opened = url; }
};

class Mail : public testing::Test {
protected:
    Mail() {
        qputenv("PATH", QFile::encodeName(m_folder.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(m_folder.path()));
    }
    ~Mail() override { qputenv("PATH", m_path); }

    void Write(const QString& name, const QByteArray& content) const {
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(content);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QTemporaryDir m_folder;
    QByteArray m_path = qgetenv("PATH");
};

} // namespace

TEST_F(Mail, SignOnNeedsAMailProgram) {
    constexpr int NoMailProgram = 32003;
    const auto signOn = [] {
        runtime::MapiSession session;
        session.SignOn();
        EXPECT_TRUE(session.IsOpen());
        session.SignOff();
        EXPECT_FALSE(session.IsOpen());
    };
    EXPECT_EQ(test::FailureOf(signOn), NoMailProgram) << "no desktop to ask";
    Write(QStringLiteral("xdg-mime"), "#!/bin/sh\nexit 0\n");
    EXPECT_EQ(test::FailureOf(signOn), NoMailProgram) << "no program chosen";
    Write(QStringLiteral("xdg-mime"),
          "#!/bin/sh\n[ \"$3\" = x-scheme-handler/mailto ] && echo mailer.desktop\n");
    EXPECT_EQ(test::FailureOf(signOn), NoMailProgram) << "the chosen program is gone";
    QDir(m_folder.path()).mkdir(QStringLiteral("applications"));
    Write(QStringLiteral("applications/mailer.desktop"), "[Desktop Entry]\n");
    EXPECT_EQ(test::FailureOf(signOn), 0);
}

TEST_F(Mail, TheComposeWindowGetsNameAndAddress) {
    int count = 1;
    QByteArray name = "test";
    char* arguments[] = {name.data(), nullptr};
    const QGuiApplication application(count, static_cast<char**>(arguments));
    const Desktop desktop;

    runtime::MapiMessage message;
    message.Compose();
    message.RecipDisplayName = QStringLiteral("Имя+ \"x\"");
    message.RecipAddress = QStringLiteral("a+b@example.org");
    message.Send(true);
    EXPECT_EQ(desktop.opened.scheme(), QStringLiteral("mailto"));
    EXPECT_EQ(desktop.opened.path(QUrl::FullyDecoded),
              QStringLiteral("\"Имя+ \\\"x\\\"\" <a+b@example.org>"));
    EXPECT_FALSE(desktop.opened.toEncoded().contains('+'));
    EXPECT_FALSE(desktop.opened.hasQuery());
}

#include "MailTest.moc"
