#pragma once

#include "platform/engine/dao/Database.h"
#include "platform/forms/Criterion.h"
#include "platform/forms/Form.h"

#include <vector>

namespace forms {

class ListForm;

/// The filter window of a list. Its load makes and shows the list and ties the pair; Find hands the list a
/// statement and hides the filter; Cancel hides it and freezes the list. Values stay until it is unloaded.
class FilterForm : public Form {
    Q_OBJECT

protected:
    FilterForm(Design design, std::function<std::shared_ptr<engine::Database>()> database);

    virtual std::shared_ptr<ListForm> MakeList() = 0;
    /// The statement of the ticked criteria.
    virtual QString Statement() const = 0;

    /// One statement whose first column fills a list box of the filter, and what is told when it has no rows.
    struct ListSource {
        ListBox* list = nullptr;
        QString statement;
        QString emptyMessage; ///< critical box; the load then ends without a list
    };
    virtual ListSource Source() = 0;

    /// Makes the pair on the filter: names, colours, handlers, apostrophe rule.
    Criterion* AddTextCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                const QString& fieldName, int maxLength, const QString& column);
    Criterion* AddListCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                const QString& fieldName, const QString& column);
    /// Makes cmdFind and cmdCancel in a row.
    QWidget* MakeButtonRow(QWidget* parent);

    void Form_Load() override;
    void Form_Terminate() override;

    void cmdFind_Click();
    void cmdCancel_Click();

private:
    /// Tab goes through the fields of a page first, then through their boxes.
    void OrderFields();
    Criterion* AddCriterion(std::unique_ptr<Criterion> made);
    void Tick(Criterion& criterion, bool ticked);
    engine::Database& Database() const; ///< failure 91 while none is bound
    ListForm& List();                   ///< made at its first use
    void Attach();
    void AttachIfNew();

    std::function<std::shared_ptr<engine::Database>()> m_database;
    std::vector<std::unique_ptr<Criterion>> m_criteria;
    const QWidget* m_criteriaOf = nullptr; ///< the surface of the load that they belong to
    std::shared_ptr<ListForm> m_list;
};

} // namespace forms
