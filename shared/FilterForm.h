#pragma once

#include "platform/forms/Controls.h"
#include "platform/forms/Form.h"

#include <list>

class QGridLayout;

class ListForm;

/// A criterion of a filter: a check box and its field. Typing in the field or picking from the list ticks the
/// box, emptying it unticks; the box alone decides whether the criterion counts, and colours the field.
struct Criterion {
    QPointer<QCheckBox> box;
    QPointer<QWidget> field; ///< a text box, or a list box of which an entry is picked
    QString column;
};

/// The filter window of a list. Its load makes and shows the list, which holds the filter from then on; Find
/// hands the list a statement and hides the filter; Cancel hides it and freezes the list. Values stay until
/// it is unloaded.
class FilterForm : public forms::Form {
    Q_OBJECT

protected:
    /// A statement whose first column fills the list box of the filter, and what is told in a critical box
    /// when it has no rows; the load then ends without a list.
    struct Entries {
        QString statement;
        QString emptyMessage;
    };
    FilterForm(forms::Design design, Entries entries);

    virtual std::shared_ptr<ListForm> MakeList() = 0;
    /// The statement of the ticked criteria.
    virtual QString Statement() const = 0;
    /// Whether the criterion of that column is ticked.
    bool IsTicked(QStringView column) const;
    /// The clauses of the ticked criteria in the order of their making, behind WHERE or behind other
    /// conditions.
    QString Clauses(bool behindConditions) const;

    /// Makes the two controls: names, colours, handlers, apostrophe rule.
    const Criterion& AddTextCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                      const QString& fieldName, int maxLength, const QString& column);
    const Criterion& AddListCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                      const QString& fieldName, const QString& column);
    static void Place(QGridLayout& layout, const Criterion& criterion);
    /// Makes cmdFind and cmdCancel in a row.
    QWidget* MakeButtonRow(QWidget* parent);

    void Form_Load() override;
    void Form_Unload() override { m_criteria.clear(); }
    void Form_Terminate() override;

private:
    const Criterion& AddCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                  const QString& fieldName, QWidget* field, const QString& column);
    static void Tick(const Criterion& criterion, bool ticked);
    /// Tab goes through the fields of a page first, then through their boxes.
    void OrderFields() const;
    void Attach(ListForm& list);
    std::shared_ptr<ListForm> AttachedList();
    void cmdFind_Click();
    void cmdCancel_Click();

    Entries m_entries;
    std::list<Criterion> m_criteria;
    QPointer<forms::ListBox> m_box; ///< of the entries
    std::weak_ptr<ListForm> m_list;
};
