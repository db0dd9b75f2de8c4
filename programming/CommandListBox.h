#pragma once

#include <QWidget>

class QLineEdit;
class QListWidget;

// The command list with its one-line edit field, as one control. Selecting a line shows it in the
// edit field; the download routines step through the program exactly that way. The lines are held
// by the list itself: there is no other copy of the program.
class CommandListBox : public QWidget
{
    Q_OBJECT
public:
    explicit CommandListBox(QWidget *parent = nullptr);

    int count() const;
    QString line(int index) const;
    QStringList lines() const;
    void addLine(const QString &text);
    void removeLine(int index);
    void clear();

    // The selected line, -1 for none. Selecting a line puts it into the edit field.
    int listIndex() const;
    void setListIndex(int index);

    // The edit field.
    QString text() const;
    void setText(const QString &text);

    QLineEdit *editField() const { return m_edit; }
    QListWidget *listWidget() const { return m_list; }

private:
    QLineEdit *m_edit;
    QListWidget *m_list;
};
