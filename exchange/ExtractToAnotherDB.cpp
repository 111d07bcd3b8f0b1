#include "exchange/ExtractToAnotherDB.h"

#include "database/General.h"
#include "database/GiveUp.h"
#include "exchange/Retries.h"
#include "exchange/RowLoop.h"
#include "exchange/TargetFile.h"
#include "platform/forms/BusyPointer.h"
#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "shared/Declaration.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStringBuilder>

#include <optional>

namespace exchange {

namespace {

const QString Head = QStringLiteral("frmRecords функция ExtractToAnotherDB:");

/// One extraction into a new file, which comes to its name when it is complete.
class Extraction {
public:
    /// `old`: what the user has agreed to lose; it is not there afterwards, success or not.
    Extraction(QString fileName, std::shared_ptr<runtime::OldFile> old)
        : m_fileName(std::move(fileName))
        , m_old(std::move(old))
        , m_retries([this] { m_busy.reset(); }) {}

    void Run(const QString& strCurrentSQL);
    void EndBusy() { m_busy.reset(); }
    /// Gives up what is open, in this order: result sets, target with its file, workspace. Raises nothing.
    void GiveUp();

private:
    void OpenTarget();
    void CopyCards(const QString& strCurrentSQL);
    void CopyPhones(const QString& cardIds);
    void CopyPhoneTypes();
    void CopyEvents();
    void Finish();

    bool OpenRows(engine::Recordset& rows, const QString& sql);
    template <class Text>
    void ExecuteOnTarget(Text text);
    template <class Text>
    void CopyRows(engine::Recordset& rows, Text text);

    std::optional<forms::BusyPointer> m_busy;
    QString m_fileName;
    std::shared_ptr<runtime::OldFile> m_old;
    Retries m_retries;
    std::shared_ptr<engine::Workspace> m_workspace;
    std::shared_ptr<engine::Database> m_target;
    engine::Recordset m_cards;
    engine::Recordset m_phones;
    engine::Recordset m_types;
    engine::Recordset m_events;
};

void Extraction::Run(const QString& strCurrentSQL) {
    OpenTarget();
    m_busy.emplace();
    if (!General::ApplySQLToCreateDB(*m_target)) {
        m_busy.reset();
        forms::MsgBox(QStringLiteral("Не удалось извлечь данные в другую базу."), forms::Icon::Exclamation);
        GiveUp();
        return;
    }
    CopyCards(strCurrentSQL);
    CopyPhoneTypes();
    CopyEvents();
    Finish();
}

void Extraction::OpenTarget() {
    m_workspace = m_retries.Run([] {
        return engine::DBEngine::CreateWorkspace(
            QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName(), QStringLiteral("admin"),
            QString());
    });
    try {
        m_target = m_retries.Run([this] {
            return m_workspace->PrepareDatabase(m_fileName, QString::fromUtf16(engine::dbLangGeneral),
                                                engine::dbVersion40, m_old);
        });
    } catch (const runtime::Failure& failure) {
        if (failure.number() != engine::DatabaseExists)
            throw;
        // Somebody made the file after it had been looked for: take it, as an empty one would do.
        m_target = m_workspace->OpenDatabase(m_fileName);
    }
}

/// Opens a query of the working database and reaches all its rows; false if it has none.
bool Extraction::OpenRows(engine::Recordset& rows, const QString& sql) {
    rows = m_retries.Run([&] { return gDatabase->OpenRecordset(sql, engine::dbOpenDynaset); });
    if (rows.RecordCount() == 0)
        return false;
    m_retries.Run([&] { rows.MoveLast(); });
    m_retries.Run([&] { rows.MoveFirst(); });
    return true;
}

/// Runs the statement that `text` joins; a retry joins it anew.
template <class Text>
void Extraction::ExecuteOnTarget(Text text) {
    m_retries.Run([&] { m_target->Execute(text(), engine::dbFailOnError); });
}

/// Runs on the target, for each row, the statement that `text` joins from it.
template <class Text>
void Extraction::CopyRows(engine::Recordset& rows, Text text) {
    ForEachRow(rows.RecordCount(), [&](int row) {
        ExecuteOnTarget([&] { return text(row); });
        m_retries.Run([&] { rows.MoveNext(); });
    });
}

void Extraction::CopyCards(const QString& strCurrentSQL) {
    if (!OpenRows(m_cards, strCurrentSQL))
        return;
    const engine::Field id = m_cards.Fields(u"a01clid");
    const engine::Field last = m_cards.Fields(u"a01last");
    const engine::Field first = m_cards.Fields(u"a01frst");
    const engine::Field middle = m_cards.Fields(u"a01midl");
    const engine::Field memo = m_cards.Fields(u"a01memo");
    const engine::Field birthday = m_cards.Fields(u"a01bith");
    QString cardIds;
    const std::int64_t count = m_cards.RecordCount();
    ForEachRow(count, [&](int row) {
        ExecuteOnTarget([&] {
            return QString(
                QStringLiteral(
                    "INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) VALUES (") %
                id.Text() % QStringLiteral(", '") % last.Text() % QStringLiteral("', '") % first.Text() %
                QStringLiteral("', '") % middle.Text() % QStringLiteral("', '") % memo.Text() %
                QStringLiteral("', '") % birthday.Text() % QStringLiteral("')"));
        });
        cardIds += id.Text();
        if (row != count)
            cardIds += QStringLiteral(", ");
        m_retries.Run([&] { m_cards.MoveNext(); });
    });
    if (!cardIds.isEmpty())
        CopyPhones(cardIds);
}

void Extraction::CopyPhones(const QString& cardIds) {
    if (!OpenRows(m_phones, QStringLiteral("SELECT * FROM a02 WHERE a02clid in (") % cardIds % u')'))
        return;
    const engine::Field card = m_phones.Fields(u"a02clid");
    const engine::Field code = m_phones.Fields(u"a02code");
    const engine::Field number = m_phones.Fields(u"a02cval");
    CopyRows(m_phones, [&](int) {
        return QString(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (") % card.Text() %
                       QStringLiteral(", '") % code.Text() % QStringLiteral("', '") % number.Text() %
                       QStringLiteral("')"));
    });
}

/// The types of the working database in place of the seeded ones; without any, the seeded ones stay.
void Extraction::CopyPhoneTypes() {
    if (!OpenRows(m_types, QStringLiteral("SELECT * FROM t01 WHERE t01type = 0")))
        return;
    ExecuteOnTarget([] { return QStringLiteral("DELETE FROM t01 WHERE t01type = 0"); });
    const engine::Field code = m_types.Fields(u"t01code");
    const engine::Field name = m_types.Fields(u"t01cval");
    CopyRows(m_types, [&](int) {
        return QString(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES ( 0, ") %
                       code.Text() % QStringLiteral(", '") % name.Text() % QStringLiteral("')"));
    });
}

void Extraction::CopyEvents() {
    if (!OpenRows(m_events, QStringLiteral("SELECT * FROM a03")))
        return;
    const engine::Field name = m_events.Fields(u"a03evnm");
    const engine::Field date = m_events.Fields(u"a03evdt");
    const engine::Field period = m_events.Fields(u"a03evpr");
    CopyRows(m_events, [&](int) {
        return QString(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('") % name.Text() %
                       QStringLiteral("', '") % date.Text() % QStringLiteral("', '") % period.Text() %
                       QStringLiteral("')"));
    });
}

void Extraction::Finish() {
    m_busy.reset();
    m_cards = {};
    m_phones = {};
    m_types = {};
    m_events = {};
    m_target->Close(); // what is lost in this step no second try brings back
    m_target.reset();
    m_workspace->Close();
    m_workspace.reset();
}

void Extraction::GiveUp() {
    m_cards = {};
    m_phones = {};
    m_types = {};
    m_events = {};
    ::GiveUp(Head, m_workspace, m_target, m_old);
}

} // namespace

void ExtractToAnotherDB(forms::Form& list, const QString& strCurrentSQL) {
    std::optional<Extraction> extraction;
    try {
        const QString fileName = AskTargetFile(list, QStringLiteral("База данных Access (*.mdb)|*.mdb"));
        if (fileName.isEmpty())
            return;
        std::shared_ptr<runtime::OldFile> old;
        if (runtime::IsFile(fileName)) {
            if (gRegister().GetKeyVal(QStringLiteral("DB_Path")) == fileName) {
                forms::MsgBox(QStringLiteral("База не может быть экспортированна сама в себя."),
                              forms::Icon::Exclamation);
                return;
            }
            if (!AskOverwrite(fileName))
                return;
            old = std::make_shared<runtime::OldFile>(fileName);
        }
        extraction.emplace(fileName, old);
        extraction->Run(strCurrentSQL);
    } catch (const runtime::Failure& failure) {
        if (extraction)
            extraction->EndBusy();
        forms::ShowErrorBox(Head, failure);
        if (extraction)
            extraction->GiveUp();
    }
}

} // namespace exchange
