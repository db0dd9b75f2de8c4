#include "CommandListBox.h"

#include <QLineEdit>
#include <QListView>
#include <QScopedValueRollback>
#include <QStringListModel>
#include <QVBoxLayout>

CommandListBox::CommandListBox(QWidget *parent)
    : QWidget(parent), m_edit(new QLineEdit(this)), m_lines(new QStringListModel(this)),
      m_list(new QListView(this))
{
    m_edit->setObjectName(QStringLiteral("Text"));
    m_list->setObjectName(QStringLiteral("List"));
    m_list->setModel(m_lines);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setUniformItemSizes(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_edit);
    layout->addWidget(m_list);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                if (current.isValid() && !m_quiet)
                    m_edit->setText(current.data().toString());
            });
}

int CommandListBox::count() const
{
    return m_lines->rowCount();
}

QString CommandListBox::line(int index) const
{
    return m_lines->stringList().value(index);
}

QStringList CommandListBox::lines() const
{
    return m_lines->stringList();
}

void CommandListBox::addLine(const QString &text)
{
    const int row = count();
    m_lines->insertRows(row, 1);
    m_lines->setData(m_lines->index(row), text);
}

void CommandListBox::addLines(const QStringList &texts)
{
    // The list is handed over whole; the line that was current stays so, and the edit field as it was.
    const int current = listIndex();
    const QScopedValueRollback quiet(m_quiet, true);
    m_lines->setStringList(m_lines->stringList() + texts);
    m_list->setCurrentIndex(m_lines->index(current));
}

void CommandListBox::removeLine(int index)
{
    if (index < 0 || index >= count())
        return;
    // Removing a line leaves nothing selected, and the edit field as it was.
    const QScopedValueRollback quiet(m_quiet, true);
    m_lines->removeRows(index, 1);
    m_list->setCurrentIndex({});
}

void CommandListBox::clear()
{
    // An empty list shows nothing in its edit field either.
    m_lines->setStringList({});
    m_edit->clear();
}

int CommandListBox::listIndex() const
{
    return m_list->currentIndex().row();
}

void CommandListBox::setListIndex(int index)
{
    m_list->setCurrentIndex(m_lines->index(index));
    // Selecting the line that is already selected shows it again all the same.
    if (index >= 0 && index < count())
        m_edit->setText(line(index));
}

QString CommandListBox::text() const
{
    return m_edit->text();
}

void CommandListBox::setText(const QString &text)
{
    m_edit->setText(text);
}
