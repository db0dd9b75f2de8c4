#pragma once

#include <QWidget>

class QLineEdit;
class QListView;
class QStringListModel;

// The command list with its one-line edit field, as one control. Selecting a line shows it in the
// edit field; the download routines step through the program exactly that way. The lines are held
// by the list itself: there is no other copy of the program. A list holds each line as a plain text,
// so that a long program costs little more than its file.
class CommandListBox : public QWidget
{
    Q_OBJECT
public:
    explicit CommandListBox(QWidget *parent = nullptr);

    int count() const;
    QString line(int index) const;
    QStringList lines() const;
    void addLine(const QString &text);
    // Adds the lines behind the last one at once: a long program file opens in one step.
    void addLines(const QStringList &texts);
    void removeLine(int index);
    void clear();

    // The selected line, -1 for none. Selecting a line puts it into the edit field.
    int listIndex() const;
    void setListIndex(int index);

    // The edit field.
    QString text() const;
    void setText(const QString &text);

    QLineEdit *editField() const { return m_edit; }
    QListView *listView() const { return m_list; }

private:
    QLineEdit *m_edit;
    QStringListModel *m_lines;
    QListView *m_list;
    bool m_quiet = false; // the current line moves without the user: the edit field stays as it is
};
