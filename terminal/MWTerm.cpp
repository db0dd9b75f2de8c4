#include "MWTerm.h"

#include "AppError.h"
#include "CommControl.h"
#include "IniFile.h"
#include "ModemSession.h"
#include "Named.h"
#include "PortClaim.h"
#include "Prompts.h"
#include "TermPalette.h"
#include "TerminalScreen.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

constexpr int kSampleRows = 8;
constexpr int kSampleColumns = 40;
// The object error the control's language raises when a member is asked of something without it.
constexpr int kNoSuchMember = 438;

QIcon swatch(const QColor &color)
{
    QPixmap pixmap(16, 12);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::black);
    painter.drawRect(0, 0, 15, 11);
    return QIcon(pixmap);
}

QComboBox *colorList(QWidget *parent, const char *name)
{
    auto *list = named<QComboBox>(name, parent);
    const QStringList names = paletteColorNames();
    for (int i = 0; i < kPaletteSize; ++i)
        list->addItem(swatch(paletteColor(i)), names[i]);
    return list;
}

QSpinBox *numberField(QWidget *parent, const char *name, int minimum, int maximum)
{
    auto *field = named<QSpinBox>(name, parent);
    field->setRange(minimum, maximum);
    return field;
}

} // namespace

QByteArray sampleTerminalText()
{
    return "CMD:model\r\nModel Q4U\r\nCMD:\x1b[1mbold\x1b[0m, \x1b[7mreverse\x1b[0m and "
           "\x1b[4munderline\x1b[0m\r\n"
           "CMD:";
}

MWTerm::MWTerm(ModemSession &session, IniFile &ini, QWidget *parent)
    : QDialog(parent), m_session(session), m_ini(ini)
{
    setObjectName(QStringLiteral("MWTerm"));
    setWindowTitle(QStringLiteral("Terminal Emulation Settings"));

    cbEmulation = new QComboBox(this);
    cbEmulation->setObjectName(QStringLiteral("cbEmulation"));
    cbEmulation->addItems({QStringLiteral("TTY"), QStringLiteral("VT-100")});
    cbScreenFilter = new QComboBox(this);
    cbScreenFilter->setObjectName(QStringLiteral("cbScreenFilter"));
    cbScreenFilter->addItems(
        {QStringLiteral("Color"), QStringLiteral("Gray Scale"), QStringLiteral("Monochrome")});
    cboForeColor = colorList(this, "cboForeColor");
    cboBackColor = colorList(this, "cboBackColor");
    cboCursorType = new QComboBox(this);
    cboCursorType->setObjectName(QStringLiteral("cboCursorType"));
    cboCursorType->addItems({QStringLiteral("Underline"), QStringLiteral("Block")});
    cboBackspace = new QComboBox(this);
    cboBackspace->setObjectName(QStringLiteral("cboBackspace"));
    cboBackspace->addItems({QStringLiteral("Ctrl-H (8)"), QStringLiteral("Delete (127)")});
    txtRows = numberField(this, "txtRows", 1, TerminalScreen::kMaxRows);
    txtColumns = numberField(this, "txtColumns", 1, TerminalScreen::kMaxColumns);
    txtScrollRows = numberField(this, "txtScrollRows", 0, scrollRowsLimit(1));
    chkEcho = new QCheckBox(QStringLiteral("Local &Echo"), this);
    chkEcho->setObjectName(QStringLiteral("chkEcho"));
    cmdFont = new QPushButton(QStringLiteral("Select Fo&nt"), this);
    cmdFont->setObjectName(QStringLiteral("cmdFont"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    CommSample = new TerminalScreen(this);
    CommSample->setObjectName(QStringLiteral("CommSample"));
    CommSample->setScreenSize(kSampleRows, kSampleColumns);
    CommSample->setScrollRows(0);
    CommSample->setFocusPolicy(Qt::NoFocus);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("&Emulation:"), cbEmulation);
    form->addRow(QStringLiteral("Screen &Filter:"), cbScreenFilter);
    form->addRow(QStringLiteral("&Foreground:"), cboForeColor);
    form->addRow(QStringLiteral("Back&ground:"), cboBackColor);
    form->addRow(QStringLiteral("&Rows:"), txtRows);
    form->addRow(QStringLiteral("Co&lumns:"), txtColumns);
    form->addRow(QStringLiteral("Scroll &Back Rows:"), txtScrollRows);
    form->addRow(QStringLiteral("C&ursor:"), cboCursorType);
    form->addRow(QStringLiteral("Back&space Key:"), cboBackspace);
    form->addRow(QString(), chkEcho);
    form->addRow(QString(), cmdFont);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto *top = new QHBoxLayout;
    top->addLayout(form);
    top->addWidget(CommSample, 0, Qt::AlignTop);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(buttons);

    for (QComboBox *list :
         {cbEmulation, cbScreenFilter, cboForeColor, cboBackColor, cboCursorType, cboBackspace})
        connect(list, &QComboBox::currentIndexChanged, this, &MWTerm::trySample);
    connect(chkEcho, &QCheckBox::toggled, this, &MWTerm::trySample);
    connect(cmdFont, &QPushButton::clicked, this, &MWTerm::cmdFont_Click);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

TermSettings MWTerm::settings() const
{
    TermSettings s;
    s.emulation = cbEmulation->currentIndex() + 1;
    s.colorFilter = cbScreenFilter->currentIndex();
    s.foreColor = cboForeColor->currentIndex();
    s.backColor = cboBackColor->currentIndex();
    s.cursorType = cboCursorType->currentIndex();
    s.backspace = cboBackspace->currentIndex();
    s.rows = txtRows->value();
    s.columns = txtColumns->value();
    s.scrollRows = txtScrollRows->value();
    s.echo = chkEcho->isChecked();
    s.font = m_font;
    return s;
}

void MWTerm::fillFrom(const TermSettings &s)
{
    m_font = s.font;
    cbEmulation->setCurrentIndex(std::clamp(s.emulation - 1, 0, 1));
    cbScreenFilter->setCurrentIndex(std::clamp(s.colorFilter, 0, 2));
    cboForeColor->setCurrentIndex(s.foreColor & (kPaletteSize - 1));
    cboBackColor->setCurrentIndex(s.backColor & (kPaletteSize - 1));
    cboCursorType->setCurrentIndex(std::clamp(s.cursorType, 0, 1));
    cboBackspace->setCurrentIndex(std::clamp(s.backspace, 0, 1));
    txtRows->setValue(s.rows);
    txtColumns->setValue(s.columns);
    txtScrollRows->setValue(s.scrollRows);
    chkEcho->setChecked(s.echo);
    trySample();
}

void MWTerm::trySample()
{
    const TermSettings s = settings();
    CommSample->setEmulation(s.emulation);
    CommSample->setForeColor(s.foreColor);
    CommSample->setBackColor(s.backColor);
    CommSample->setColorFilter(s.colorFilter);
    CommSample->setCursorType(s.cursorType);
    CommSample->setFont(s.font);
    // The sample shows its text as the chosen emulation would.
    CommSample->setScreenText(QString());
    CommSample->receive(sampleTerminalText());
    CommSample->flush();
}

void MWTerm::cmdFont_Click()
{
    const FontChoice current{m_font.family(), m_font.pointSizeF(), m_font.bold(), m_font.italic()};
    if (const auto chosen = m_session.prompts().FontDialog(current, QStringLiteral("Font"))) {
        m_font.setFamily(chosen->family);
        if (chosen->pointSize > 0)
            m_font.setPointSizeF(chosen->pointSize);
        m_font.setBold(chosen->bold);
        m_font.setItalic(chosen->italic);
        trySample();
    }
}

bool MWTerm::proveControl(const TerminalScreen &control)
{
    if (control.port())
        return true;
    ShowAppError(m_session.prompts(),
                 AppError{kNoSuchMember, QStringLiteral("Object doesn't support this property or method")});
    return false;
}

bool MWTerm::SetTerminalSettings(TerminalScreen &control)
{
    if (!proveControl(control))
        return false;
    fillFrom(control.settings());
    if (exec() != QDialog::Accepted)
        return false;
    const TermSettings chosen = settings();
    control.applySettings(chosen);
    writeTermSection(m_ini, terminalSection(control.port()->Tag()), chosen);
    return true;
}

void MWTerm::LoadTerminalSettings(TerminalScreen &control)
{
    if (!proveControl(control))
        return;
    CommControl &port = *control.port();
    const QString section = terminalSection(port.Tag());

    // The last of these that the system has stands.
    QFont font = control.font();
    for (const QString &family :
         {QStringLiteral("Courier"), QStringLiteral("System"), QStringLiteral("Terminal")})
        if (QFontDatabase::hasFamily(family))
            font.setFamily(family);
    control.setFont(font);

    control.setScreenSize(TerminalScreen::kDefaultRows, TerminalScreen::kDefaultColumns);
    control.setScrollRows(TerminalScreen::kDefaultScrollRows);
    control.setAutoSize(true);
    control.setAutoScroll(4);
    port.setRThreshold(0);
    PortClaim::giveToTerminal(port);

    const std::optional<TermSettings> saved = readTermSection(m_ini, section, control.settings());
    if (!saved) {
        control.setEmulation(2);
        SetTerminalSettings(control);
        return;
    }
    control.applySettings(*saved);
    // The screen's text comes through, less its trailing empty lines, even when the size stays.
    control.reflowText();
}
