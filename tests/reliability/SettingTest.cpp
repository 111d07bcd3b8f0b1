// The system's calls fail one after the other, whoever makes them, while the path of the book is stored. The
// program lends its symbols to the toolkit.

#include "platform/runtime/Settings.h"
#include "tests/support/Expect.h"

#include <QDir>
#include <QTemporaryDir>

#include <cerrno>
#include <dlfcn.h>
#include <unistd.h>

namespace {

QStringList made; ///< calls since the last look
int failing = 0;  ///< which of them fails, from 1; 0: nobody looks

bool Passes(const char* call) {
    if (failing == 0)
        return true;
    made += QString::fromLatin1(call);
    errno = EIO;
    return made.size() != failing;
}

} // namespace

#define REAL(name) static auto* const real = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name))

extern "C" {

ssize_t write(int descriptor, const void* from, size_t size) {
    REAL(write);
    return Passes("write") ? real(descriptor, from, size) : -1;
}

int fsync(int descriptor) {
    REAL(fsync);
    return Passes("sync") ? real(descriptor) : -1;
}

int rename(const char* path, const char* to) noexcept {
    REAL(rename);
    return Passes("rename") ? real(path, to) : -1;
}

// Passing names come before the one of the file.
int linkat(int folder, const char* path, int toFolder, const char* to, int flags) noexcept {
    REAL(linkat);
    const bool isLast = QByteArray(to).endsWith("/settings") && ::access(to, F_OK) != 0;
    return !isLast || Passes("link") ? real(folder, path, toFolder, to, flags) : -1;
}
}

TEST(Setting, OnASystemThatFails) {
    const auto save = [](const char* path) {
        runtime::SaveSetting(QStringLiteral("Zavelik"), QStringLiteral("General"), QStringLiteral("DB_Path"),
                             QString::fromLatin1(path));
    };
    for (const char* before : {"", "old.mdb"}) {
        const QTemporaryDir folder;
        runtime::UseSettingsFile(folder.filePath(QStringLiteral("settings")));
        if (*before != 0)
            save(before);
        for (int place = 1, failure = -1; failure != 0; ++place) {
            SCOPED_TRACE(testing::Message() << '"' << before << "\", call " << place);
            made.clear();
            failing = place;
            failure = test::FailureOf([&] { save("new.mdb"); });
            failing = 0;
            EXPECT_EQ(failure, made.size() < place ? 0 : runtime::DeviceIOError);
            EXPECT_EQ(runtime::GetSetting(QStringLiteral("Zavelik"), QStringLiteral("General"),
                                          QStringLiteral("DB_Path")),
                      QString::fromLatin1(failure == 0 ? "new.mdb" : before));
            EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(),
                      failure == 0 || *before != 0 ? 1 : 0);
        }
        EXPECT_EQ(made.join(u' '), *before == 0 ? QStringLiteral("write sync link sync")
                                                : QStringLiteral("write sync rename sync"));
    }
    runtime::UseSettingsFile({});
}
