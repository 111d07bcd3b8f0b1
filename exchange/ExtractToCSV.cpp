#include "exchange/ExtractToCSV.h"

#include "exchange/RowLoop.h"
#include "exchange/TargetFile.h"
#include "exchange/frmSelectDelimiter.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "shared/Declaration.h"

#include <optional>
#include <vector>

namespace exchange {

namespace {

/// Unloads the dialog when it goes.
struct Unloader {
    void operator()(frmSelectDelimiter* dialog) const { dialog->Unload(); }
};

/// The eight columns, in the order of the file. The phones are told apart by their codes, whatever the user
/// calls the types.
enum class Column { FirstName, LastName, MiddleName, Name, HomePhone, MobilePhone, BusinessPhone, Notes };

struct ColumnDesign {
    Column column;
    QString header;
    int item; ///< of the dialog's list, from 1
};

const std::vector<ColumnDesign>& ColumnDesigns() {
    static const std::vector<ColumnDesign> designs{
        {Column::FirstName, QStringLiteral("First Name"), 2},
        {Column::LastName, QStringLiteral("Last Name"), 1},
        {Column::MiddleName, QStringLiteral("Middle Name"), 3},
        {Column::Name, QStringLiteral("Name"), 4},
        {Column::HomePhone, QStringLiteral("Home Phone"), 5},
        {Column::MobilePhone, QStringLiteral("Mobile Phone"), 6},
        {Column::BusinessPhone, QStringLiteral("Business Phone"), 7},
        {Column::Notes, QStringLiteral("Notes"), 8},
    };
    return designs;
}

/// The columns of a card's row, looked up once for the whole run.
class CardRow {
public:
    CardRow(const engine::Recordset& rows, engine::Recordset& phones)
        : m_phones(phones)
        , m_id(rows.Fields(u"a01clid"))
        , m_last(rows.Fields(u"a01last"))
        , m_first(rows.Fields(u"a01frst"))
        , m_middle(rows.Fields(u"a01midl"))
        , m_memo(rows.Fields(u"a01memo"))
        , m_phone(phones.Fields(u"a02cval")) {}

    QString Cell(Column column) {
        switch (column) {
        case Column::FirstName:
            return m_first.Text();
        case Column::LastName:
            return m_last.Text();
        case Column::MiddleName:
            return m_middle.Text();
        case Column::Name:
            return m_last.Text() + u' ' + m_first.Text() + u' ' + m_middle.Text();
        case Column::HomePhone:
            return Phone(QStringLiteral("AND a02code = 1"));
        case Column::MobilePhone:
            return Phone(QStringLiteral("AND a02code = 2"));
        case Column::BusinessPhone:
            return Phone(QStringLiteral("AND a02code = 3"));
        case Column::Notes:
            return m_memo.Text();
        }
        Q_UNREACHABLE();
    }

private:
    QString Phone(const QString& code) {
        m_phones.FindFirst(QStringLiteral("a02clid= ") + m_id.Text() + code);
        return m_phones.NoMatch() ? QString() : m_phone.Text();
    }

    engine::Recordset& m_phones;
    engine::Field m_id;
    engine::Field m_last;
    engine::Field m_first;
    engine::Field m_middle;
    engine::Field m_memo;
    engine::Field m_phone;
};

/// One export. Its end releases what it still holds.
class CsvExport {
public:
    void Run(forms::Form& list, const QString& strCurrentSQL);

private:
    bool AskColumns();
    bool WriteRows();
    void Finish();

    // The members go from the last to the first: dialog, file, result set of the list, result set of the
    // phones.
    engine::Recordset m_phones;
    engine::Recordset m_rows;
    std::optional<runtime::OutputFile> m_file;
    std::shared_ptr<frmSelectDelimiter> m_form = forms::Form::Default<frmSelectDelimiter>();
    std::unique_ptr<frmSelectDelimiter, Unloader> m_dialog;

    QChar m_delimiter;
    runtime::Int16 m_written;
};

void CsvExport::Run(forms::Form& list, const QString& strCurrentSQL) {
    const QString fileName = AskTargetFile(list, QStringLiteral("Файл с разделителями (*.csv)|*.csv"));
    if (fileName.isEmpty())
        return;
    if (runtime::IsFile(fileName)) {
        if (!AskOverwrite(fileName))
            return;
        runtime::Kill(fileName);
    }
    if (!AskColumns())
        return;
    m_file.emplace(fileName);
    m_rows = gDatabase->OpenRecordset(strCurrentSQL, engine::dbOpenDynaset);
    if (m_rows.RecordCount() != 0 && !WriteRows())
        return;
    Finish();
}

/// False if the user gave up; the dialog then stays loaded, so that it comes back as it is.
bool CsvExport::AskColumns() {
    m_form->Show(true);
    if (runtime::TextToNumber(m_form->Tag()) == 0)
        return false;
    m_dialog.reset(m_form.get());
    m_delimiter = m_form->Delimiter();
    return true;
}

/// False, after a message, if no column is ticked.
bool CsvExport::WriteRows() {
    m_rows.MoveLast();
    m_rows.MoveFirst();
    m_phones = gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM a02"), engine::dbOpenDynaset);

    std::vector<Column> columns;
    QStringList headers;
    for (const ColumnDesign& design : ColumnDesigns()) {
        if (!m_form->IsChecked(design.item))
            continue;
        columns.push_back(design.column);
        headers.append(design.header);
    }
    if (columns.empty()) {
        forms::MsgBox(QStringLiteral("Не выбран ни один параметр для экспорта."), forms::Icon::Exclamation);
        return false;
    }
    m_file->Print(headers.join(m_delimiter));

    CardRow card(m_rows, m_phones);
    QString line;
    ForEachRow(m_rows.RecordCount(), [&](int) {
        line.clear();
        bool filled = false;
        for (const Column column : columns) {
            if (column != columns.front())
                line += m_delimiter;
            const QString cell = card.Cell(column);
            filled = filled || !cell.isEmpty();
            line += cell;
        }
        if (filled) {
            m_file->Print(line);
            ++m_written;
        }
        m_rows.MoveNext();
    });
    return true;
}

void CsvExport::Finish() {
    m_dialog.reset();
    m_rows = {};
    m_phones = {};
    m_file->Close();
    forms::MsgBox(QStringLiteral("Экспорт данных в CSV файл успешно завершен. Экспортированно ") +
                      QString::number(m_written) + QStringLiteral(" записей."),
                  forms::Icon::Information);
}

} // namespace

void ExtractToCSV(forms::Form& list, const QString& strCurrentSQL) {
    CsvExport run;
    forms::Attempt(QStringLiteral("frmRecords функция ExtractToCSV:"), [&] { run.Run(list, strCurrentSQL); });
}

} // namespace exchange
