#include "platform/runtime/Mail.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

TEST(MailLibrary, ItsAnswersAreFailuresAndItGetsNameAndAddress) {
    const QTemporaryDir folder;
    const QString noted = folder.filePath(QStringLiteral("note"));
    qputenv("ZAVELIK_NOTE", QFile::encodeName(noted));
    const struct {
        const char* logon;
        const char* send;
        int failure;
    } rows[] = {
        {"3", "0", 32003}, // no mail program, or nobody signs on
        {"0", "1", 32001}, // the window was closed
        {"0", "14", 32014},
        {"0", "0", 0},
    };
    for (const auto& row : rows) {
        qputenv("ZAVELIK_LOGON", row.logon);
        qputenv("ZAVELIK_SEND", row.send);
        EXPECT_EQ(test::FailureOf([] {
                      runtime::MapiSession session;
                      session.SignOn();
                      runtime::MapiMessage message;
                      message.SessionID = session.SessionID;
                      message.Compose();
                      message.RecipDisplayName = QStringLiteral("Name + \"x\"");
                      message.RecipAddress = QStringLiteral("a+b@example.org");
                      message.Send(true);
                      session.SignOff();
                  }),
                  row.failure);
    }
    EXPECT_EQ(test::ReadBytes(noted), "7 8 Name + \"x\" <SMTP:a+b@example.org>");
}
