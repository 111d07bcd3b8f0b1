#pragma once

#include "platform/forms/Controls.h"

namespace forms {

/// A criterion of a filter: a check box and its field. Typing in the field or picking from the list ticks the
/// box, emptying it unticks; the box alone decides whether the criterion counts, and colours the field.
class Criterion {
public:
    enum Comparison { Like, Equal };

    Criterion(QCheckBox* box, QLineEdit* field, QString column);
    Criterion(QCheckBox* box, ListBox* field, QString column);

    bool IsTicked() const;
    QString Text() const; ///< of the text box, or of the selected entry (the empty text without one)
    /// The clause with the word that joins it: ` AND a01last LIKE 'text'`.
    QString Clause(const QString& joiner) const;
    QCheckBox* Box() const { return m_box; }
    QWidget* Field() const;

private:
    QCheckBox* m_box;
    QLineEdit* m_text = nullptr;
    ListBox* m_list = nullptr;
    QString m_column;
};

} // namespace forms
