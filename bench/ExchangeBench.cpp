// Export, import and extraction of large books by the program's own windows and routines, beside plain SQLite
// that does the same with prepared statements and the indexes that the work calls for, and makes its changes
// durable in groups of the same length. The times leave out the making of the books and the answering of the
// dialogs.

#include "bench/BenchBook.h"
#include "bench/Ratios.h"
#include "exchange/ExtractToAnotherDB.h"
#include "exchange/ExtractToCSV.h"
#include "exchange/frmImportMasterStep1.h"
#include "platform/runtime/Codec1251.h"
#include "records/frmRecords.h"
#include "shared/Declaration.h"
#include "shell/frmMain.h"

#include <QCollator>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include <chrono>

namespace {

constexpr int Cards = 32766;
const QString AllCards = QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl");

using Clock = std::chrono::steady_clock;

/// Answers every dialog at once, and notes when the work behind the last answer began and when the result
/// came.
class Answering : public QObject {
public:
    explicit Answering(QString path)
        : m_path(std::move(path)) {
        connect(&m_timer, &QTimer::timeout, this, [this] { Answer(); });
        m_timer.start(1);
    }
    double began = bench::CpuSeconds();
    double ended = 0;

private:
    void Answer() {
        QWidget* dialog = QApplication::activeModalWidget();
        if (auto* file = qobject_cast<QFileDialog*>(dialog)) {
            file->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(m_path);
            began = bench::CpuSeconds();
            QMetaObject::invokeMethod(file, "accept");
        } else if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
            ended = bench::CpuSeconds();
            if (box->icon() == QMessageBox::Critical)
                qFatal("%s", qPrintable(box->text()));
            box->buttons().front()->click();
        } else if (dialog && dialog->objectName() == u"frmSelectDelimiter") {
            began = bench::CpuSeconds();
            dialog->findChild<QPushButton*>(QStringLiteral("cmdOk"))->click();
        }
    }

    QTimer m_timer;
    QString m_path;
};

/// The frame on the screen, and a book bound as the working database.
class Session {
public:
    explicit Session(const bench::Book& book) {
        gWorkspace = book.workspace;
        gDatabase = book.database;
        m_frame->Show();
    }
    ~Session() {
        m_frame->Unload();
        gDatabase.reset();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

private:
    std::shared_ptr<frmMain> m_frame = forms::Form::Default<frmMain>();
};

bench::Book& BookOfThreePhones() {
    static bench::Book book(Cards, 3);
    return book;
}

bench::Book& BookOfOnePhone() {
    static bench::Book book(Cards, 1);
    return book;
}

void BindText(sqlite3_stmt* statement, int place, QStringView text) {
    sqlite3_bind_text16(statement, place, text.utf16(), static_cast<int>(text.size() * 2), SQLITE_TRANSIENT);
}

QString ColumnText(sqlite3_stmt* statement, int column) {
    const auto* text = static_cast<const QChar*>(sqlite3_column_text16(statement, column));
    return QString(text, sqlite3_column_bytes16(statement, column) / 2);
}

/// As the program sorts.
int CompareRussian(void* collator, int lengthA, const void* a, int lengthB, const void* b) {
    return static_cast<QCollator*>(collator)->compare(QStringView(static_cast<const QChar*>(a), lengthA / 2),
                                                      QStringView(static_cast<const QChar*>(b), lengthB / 2));
}

int CompareFolded(void* /*context*/, int lengthA, const void* a, int lengthB, const void* b) {
    return QStringView(static_cast<const QChar*>(a), lengthA / 2)
        .compare(QStringView(static_cast<const QChar*>(b), lengthB / 2), Qt::CaseInsensitive);
}

/// A book of plain SQLite with the same tables and with the indexes that the work calls for.
class PlainBook : public bench::Plain {
public:
    explicit PlainBook(const QString& path)
        : Plain(path) {
        sqlite3_create_collation(Handle(), "FOLD", SQLITE_UTF16_ALIGNED, nullptr, CompareFolded);
        m_collator.setCaseSensitivity(Qt::CaseInsensitive);
        sqlite3_create_collation(Handle(), "RU", SQLITE_UTF16_ALIGNED, &m_collator, CompareRussian);
    }

    void CreateTables() {
        Run("CREATE TABLE a01 (a01clid INTEGER PRIMARY KEY, a01last TEXT COLLATE FOLD, a01frst TEXT COLLATE "
            "FOLD, a01midl TEXT COLLATE FOLD, a01memo TEXT, a01bith TEXT);"
            "CREATE TABLE a02 (a02rcid INTEGER PRIMARY KEY, a02clid INTEGER NOT NULL, a02code INTEGER NOT "
            "NULL, "
            "a02cval TEXT NOT NULL);"
            "CREATE INDEX a01name ON a01 (a01last, a01frst, a01midl);"
            "CREATE INDEX a02card ON a02 (a02clid, a02code);");
    }

    void Fill(int phones) {
        CreateTables();
        Run("BEGIN");
        sqlite3_stmt* card = Prepare("INSERT INTO a01 VALUES (?, ?, ?, ?, '', '01.01.1980')");
        sqlite3_stmt* phone = Prepare("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (?, ?, ?)");
        for (int i = 1; i <= Cards; ++i) {
            sqlite3_bind_int(card, 1, i);
            BindText(card, 2, bench::LastName(i));
            BindText(card, 3, bench::FirstName(i));
            BindText(card, 4, bench::MiddleName(i));
            Once(card);
            for (int code = 1; code <= phones; ++code) {
                sqlite3_bind_int(phone, 1, i);
                sqlite3_bind_int(phone, 2, code);
                BindText(phone, 3, QStringLiteral("8-9%1-%2").arg(code).arg(100000 + i));
                Once(phone);
            }
        }
        sqlite3_finalize(card);
        sqlite3_finalize(phone);
        Run("COMMIT");
    }

    static void Once(sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE)
            qFatal("the statement failed");
        sqlite3_reset(statement);
    }

private:
    QCollator m_collator{QLocale(QLocale::Russian)};
};

constexpr auto SortedCards =
    "SELECT * FROM a01 ORDER BY a01last COLLATE RU, a01frst COLLATE RU, a01midl COLLATE RU";

/// A transaction that is committed and begun again every 50 ms, and committed at its end.
class Groups {
public:
    explicit Groups(bench::Plain& plain)
        : m_plain(plain) {
        m_plain.Run("BEGIN");
    }
    ~Groups() { m_plain.Run("COMMIT"); }
    Groups(const Groups&) = delete;
    Groups& operator=(const Groups&) = delete;
    void Statement() {
        if (Clock::now() - m_began < std::chrono::milliseconds(50))
            return;
        m_plain.Run("COMMIT; BEGIN");
        m_began = Clock::now();
    }

private:
    bench::Plain& m_plain;
    Clock::time_point m_began = Clock::now();
};

void ExportProgram(benchmark::State& state) {
    const bench::Book& book = BookOfThreePhones();
    const Session session(book);
    auto list = forms::Form::Create<frmRecords>();
    list->Show();
    const QString path = book.Beside(QStringLiteral("out.csv"));
    for (auto _ : state) {
        QFile::remove(path);
        const Answering answering(path);
        exchange::ExtractToCSV(*list, AllCards);
        state.SetIterationTime(answering.ended - answering.began);
    }
    state.counters["bytes"] = static_cast<double>(QFileInfo(path).size());
    list->Unload();
}

void ExportPlain(benchmark::State& state) {
    const QTemporaryDir folder;
    PlainBook plain(folder.filePath(QStringLiteral("book.db")));
    plain.Fill(3);
    const QString path = folder.filePath(QStringLiteral("out.csv"));
    for (auto _ : state) {
        QFile::remove(path);
        const double began = bench::CpuSeconds();
        QFile file(path);
        if (!file.open(QFile::WriteOnly))
            qFatal("cannot write");
        file.write("First Name,Last Name,Middle Name,Name,Home Phone,Mobile Phone,Business Phone,Notes\r\n");
        sqlite3_stmt* card = plain.Prepare(SortedCards);
        sqlite3_stmt* phone = plain.Prepare(
            "SELECT a02cval FROM a02 WHERE a02clid = ? AND a02code = ? ORDER BY a02rcid LIMIT 1");
        while (sqlite3_step(card) == SQLITE_ROW) {
            const QString last = ColumnText(card, 1);
            const QString first = ColumnText(card, 2);
            const QString middle = ColumnText(card, 3);
            QString line = first + u',' + last + u',' + middle + u',' + last + u' ' + first + u' ' + middle;
            for (int code = 1; code <= 3; ++code) {
                sqlite3_bind_int64(phone, 1, sqlite3_column_int64(card, 0));
                sqlite3_bind_int(phone, 2, code);
                line += u',';
                if (sqlite3_step(phone) == SQLITE_ROW)
                    line += ColumnText(phone, 0);
                sqlite3_reset(phone);
            }
            line += u',' + ColumnText(card, 4) + QStringLiteral("\r\n");
            file.write(runtime::To1251(line));
        }
        sqlite3_finalize(card);
        sqlite3_finalize(phone);
        file.close();
        state.SetIterationTime(bench::CpuSeconds() - began);
    }
    state.counters["bytes"] = static_cast<double>(QFileInfo(path).size());
}

/// A file of that many rows with three phones each.
QString MakeCsv(const QString& folder, int rows) {
    QString path = folder + QStringLiteral("/in%1.csv").arg(rows);
    QString text =
        QStringLiteral("First Name,Last Name,Middle Name,Home Phone,Mobile Phone,Business Phone\r\n");
    for (int i = 1; i <= rows; ++i)
        text += bench::FirstName(i) + u',' + bench::LastName(i) + u',' + bench::MiddleName(i) +
                QStringLiteral(",8-91-%1,8-92-%1,8-93-%1\r\n").arg(100000 + i);
    QFile file(path);
    if (!file.open(QFile::WriteOnly) || file.write(runtime::To1251(text)) < 0)
        qFatal("cannot write");
    return path;
}

/// One run of the import master; the time from the click to the message.
double ImportByMaster(const QString& path) {
    auto master = forms::Form::Create<frmImportMasterStep1>();
    master->Show();
    QWidget* surface = master->Surface();
    surface->findChild<QLineEdit*>(QStringLiteral("txtFile"))->setText(path);
    surface->findChild<QTabWidget*>(QStringLiteral("tabImport"))->setCurrentIndex(2);
    auto* list = surface->findChild<QListWidget*>(QStringLiteral("lstParameter"));
    for (int item = 0; item < list->count(); ++item)
        list->item(item)->setCheckState(Qt::Checked);
    Answering answering({});
    answering.began = bench::CpuSeconds();
    surface->findChild<QPushButton*>(QStringLiteral("cmdImport"))->click();
    return answering.ended - answering.began;
}

void ImportNewProgram(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = MakeCsv(folder.path(), static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const bench::Book book(0);
        const Session session(book);
        state.SetIterationTime(ImportByMaster(path));
    }
}

void ImportAgainProgram(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = MakeCsv(folder.path(), static_cast<int>(state.range(0)));
    const bench::Book book(0);
    const Session session(book);
    ImportByMaster(path);
    for (auto _ : state)
        state.SetIterationTime(ImportByMaster(path));
}

double ImportByPlain(PlainBook& plain, const QString& path) {
    const double began = bench::CpuSeconds();
    {
        sqlite3_stmt* highest = plain.Prepare("SELECT MAX(a01clid) FROM a01");
        sqlite3_stmt* lookup =
            plain.Prepare("SELECT a01clid FROM a01 WHERE a01frst = ? AND a01midl = ? AND a01last = ?");
        sqlite3_stmt* card =
            plain.Prepare("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo) VALUES "
                          "(?, ?, ?, ?, 'Импортирован из файла')");
        sqlite3_stmt* remove = plain.Prepare("DELETE FROM a02 WHERE a02clid = ? AND a02code = ?");
        sqlite3_stmt* phone = plain.Prepare("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (?, ?, ?)");
        Groups groups(plain);
        QFile file(path);
        if (!file.open(QFile::ReadOnly))
            qFatal("cannot read");
        file.readLine();
        while (!file.atEnd()) {
            const QStringList cells = runtime::From1251(file.readLine().chopped(2)).split(u',');
            sqlite3_step(highest);
            int id = sqlite3_column_int(highest, 0) + 1;
            sqlite3_reset(highest);
            BindText(lookup, 1, cells[0]);
            BindText(lookup, 2, cells[2]);
            BindText(lookup, 3, cells[1]);
            const bool found = sqlite3_step(lookup) == SQLITE_ROW;
            if (found)
                id = sqlite3_column_int(lookup, 0);
            sqlite3_reset(lookup);
            if (!found) {
                sqlite3_bind_int(card, 1, id);
                BindText(card, 2, cells[1]);
                BindText(card, 3, cells[0]);
                BindText(card, 4, cells[2]);
                PlainBook::Once(card);
                groups.Statement();
            }
            for (int code = 1; code <= 3; ++code) {
                sqlite3_bind_int(remove, 1, id);
                sqlite3_bind_int(remove, 2, code);
                PlainBook::Once(remove);
                groups.Statement();
                sqlite3_bind_int(phone, 1, id);
                sqlite3_bind_int(phone, 2, code);
                BindText(phone, 3, cells[2 + code]);
                PlainBook::Once(phone);
                groups.Statement();
            }
        }
        for (sqlite3_stmt* statement : {highest, lookup, card, remove, phone})
            sqlite3_finalize(statement);
    }
    return bench::CpuSeconds() - began;
}

void ImportNewPlain(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = MakeCsv(folder.path(), static_cast<int>(state.range(0)));
    int number = 0;
    for (auto _ : state) {
        PlainBook plain(folder.filePath(QStringLiteral("%1.db").arg(++number)));
        plain.CreateTables();
        state.SetIterationTime(ImportByPlain(plain, path));
    }
}

void ImportAgainPlain(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = MakeCsv(folder.path(), static_cast<int>(state.range(0)));
    PlainBook plain(folder.filePath(QStringLiteral("book.db")));
    plain.CreateTables();
    ImportByPlain(plain, path);
    for (auto _ : state)
        state.SetIterationTime(ImportByPlain(plain, path));
}

void ExtractProgram(benchmark::State& state) {
    const bench::Book& book = BookOfOnePhone();
    const Session session(book);
    auto list = forms::Form::Create<frmRecords>();
    list->Show();
    const QString path = book.Beside(QStringLiteral("target.mdb"));
    for (auto _ : state) {
        QFile::remove(path);
        const Answering answering(path);
        exchange::ExtractToAnotherDB(*list, AllCards);
        state.SetIterationTime(bench::CpuSeconds() - answering.began);
    }
    list->Unload();
}

/// Copies the rows of a query by a prepared INSERT, column by column.
void CopyRows(bench::Plain& from, const char* query, bench::Plain& to, const char* insert, Groups& groups) {
    sqlite3_stmt* rows = from.Prepare(query);
    sqlite3_stmt* copy = to.Prepare(insert);
    while (sqlite3_step(rows) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(rows); ++column)
            sqlite3_bind_value(copy, column + 1, sqlite3_column_value(rows, column));
        PlainBook::Once(copy);
        groups.Statement();
    }
    sqlite3_finalize(rows);
    sqlite3_finalize(copy);
}

void ExtractPlain(benchmark::State& state) {
    const QTemporaryDir folder;
    PlainBook from(folder.filePath(QStringLiteral("book.db")));
    from.Fill(1);
    const bench::Book seed(0);
    bench::Plain reference(seed.Path());
    int number = 0;
    for (auto _ : state) {
        const double began = bench::CpuSeconds();
        {
            PlainBook to(folder.filePath(QStringLiteral("target%1.db").arg(++number)));
            to.Run("CREATE TABLE a01 (a01clid INTEGER PRIMARY KEY, a01last TEXT, a01frst TEXT, a01midl TEXT, "
                   "a01memo TEXT, a01bith TEXT);"
                   "CREATE TABLE a02 (a02rcid INTEGER PRIMARY KEY, a02clid INTEGER NOT NULL, a02code INTEGER "
                   "NOT "
                   "NULL, a02cval TEXT NOT NULL);"
                   "CREATE TABLE t01 (t01ctid INTEGER PRIMARY KEY, t01type INTEGER, t01code INTEGER, t01cval "
                   "TEXT "
                   "COLLATE FOLD UNIQUE);"
                   "CREATE TABLE t02 (t02rcid INTEGER PRIMARY KEY, t02cval TEXT COLLATE FOLD UNIQUE);"
                   "CREATE TABLE t03 (t03rcid INTEGER PRIMARY KEY, t03code INTEGER, t03cval TEXT, t03numb "
                   "INTEGER);");
            Groups groups(to);
            CopyRows(reference, "SELECT t01ctid, t01type, t01code, t01cval FROM t01", to,
                     "INSERT INTO t01 VALUES (?, ?, ?, ?)", groups);
            CopyRows(reference, "SELECT t02rcid, t02cval FROM t02", to, "INSERT INTO t02 VALUES (?, ?)",
                     groups);
            CopyRows(reference, "SELECT t03rcid, t03code, t03cval, t03numb FROM t03", to,
                     "INSERT INTO t03 VALUES (?, ?, ?, ?)", groups);
            CopyRows(from, SortedCards, to, "INSERT INTO a01 VALUES (?, ?, ?, ?, ?, ?)", groups);
            CopyRows(from, "SELECT a02clid, a02code, a02cval FROM a02", to,
                     "INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (?, ?, ?)", groups);
        }
        state.SetIterationTime(bench::CpuSeconds() - began);
    }
}

BENCHMARK(ExportProgram)->Apply(bench::MeasureOnce);
BENCHMARK(ExportPlain)->Apply(bench::MeasureOnce);
BENCHMARK(ImportNewProgram)->Arg(4096)->Arg(Cards)->Apply(bench::MeasureOnce);
BENCHMARK(ImportNewPlain)->Arg(4096)->Arg(Cards)->Apply(bench::MeasureOnce);
BENCHMARK(ImportAgainProgram)->Arg(Cards)->Apply(bench::MeasureOnce);
BENCHMARK(ImportAgainPlain)->Arg(Cards)->Apply(bench::MeasureOnce);
BENCHMARK(ExtractProgram)->Apply(bench::MeasureOnce);
BENCHMARK(ExtractPlain)->Apply(bench::MeasureOnce);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    forms::Application application(argc, argv, ThisProgram());
    return bench::RunPairs(argc, argv);
}
