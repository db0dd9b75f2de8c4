#include "CommandListBox.h"

#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

CommandListBox::CommandListBox(QWidget *parent)
    : QWidget(parent), m_edit(new QLineEdit(this)), m_list(new QListWidget(this))
{
    m_edit->setObjectName(QStringLiteral("Text"));
    m_list->setObjectName(QStringLiteral("List"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_edit);
    layout->addWidget(m_list);
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            m_edit->setText(m_list->item(row)->text());
    });
}

int CommandListBox::count() const
{
    return m_list->count();
}

QString CommandListBox::line(int index) const
{
    const QListWidgetItem *item = m_list->item(index);
    return item ? item->text() : QString();
}

QStringList CommandListBox::lines() const
{
    QStringList all;
    for (int i = 0; i < m_list->count(); ++i)
        all << m_list->item(i)->text();
    return all;
}

void CommandListBox::addLine(const QString &text)
{
    m_list->addItem(text);
}

void CommandListBox::removeLine(int index)
{
    if (index < 0 || index >= m_list->count())
        return;
    // Removing a line leaves nothing selected, and the edit field as it was.
    const QSignalBlocker quiet(m_list);
    delete m_list->takeItem(index);
    m_list->setCurrentRow(-1);
}

void CommandListBox::clear()
{
    // An empty list shows nothing in its edit field either.
    m_list->clear();
    m_edit->clear();
}

int CommandListBox::listIndex() const
{
    return m_list->currentRow();
}

void CommandListBox::setListIndex(int index)
{
    m_list->setCurrentRow(index);
    // Selecting the line that is already selected shows it again all the same.
    if (index >= 0 && index < m_list->count())
        m_edit->setText(m_list->item(index)->text());
}

QString CommandListBox::text() const
{
    return m_edit->text();
}

void CommandListBox::setText(const QString &text)
{
    m_edit->setText(text);
}
