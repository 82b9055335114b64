// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/graphs/graphcommands.h"

#include "engine/document/document.h"
#include "engine/indexes/blockindex.h"
#include "gui/common/viewersession.h"
#include "gui/common/waitcursor.h"
#include "gui/graphs/basicgraphwindow.h"
#include "gui/graphs/questionselectdialog.h"
#include "texts/language.h"
#include "texts/statusline.h"

#include <QApplication>

#include <algorithm>

namespace kel {

namespace {

BasicGraphCommand questionCommand(qint32 kind)
{
    return kind == HistogramGraph ? BasicGraphCommand::QuestionHistogram : BasicGraphCommand::QuestionFraction;
}

} // namespace

GraphCommands::GraphCommands(const CommandContext &context, QObject *parent) : QObject(parent), mContext(context)
{
    runDialog = [](QDialog &dialog) { return dialog.exec(); };
    mAutoShow.setSingleShot(true);
    mAutoShow.setInterval(300);
    connect(&mAutoShow, &QTimer::timeout, this, &GraphCommands::showAutoShowWindow);
}

void GraphCommands::setStatus(const TextPair &text, bool autoClear)
{
    mContext.host.statusLine().setStatus(text.english, text.swedish, autoClear);
}

bool GraphCommands::canGraph() const
{
    const ViewerSession &session = mContext.session;
    return session.document() && session.hasSheet() && session.mayOutput(OutputCommand::Figures);
}

QuestionList GraphCommands::overviewColumnsOf(qint32 block) const
{
    const Document &doc = *mContext.session.document();
    const QuestionList members = blockMembers(doc, mContext.session.blocks(), block);
    QuestionList columns;
    for (qint32 q : doc.overviewColumns)
        if (std::find(members.begin(), members.end(), q) != members.end())
            columns.push_back(q);
    return columns;
}

// Both kinds of graph window copy, print and save under the document's
// leave, with the settings the user has now.
GraphPermissions GraphCommands::permissionsFor(const Document &doc)
{
    GraphPermissions permissions;
    permissions.allowCopy = doc.properties.allowCopy;
    permissions.allowPrint = doc.properties.allowPrint;
    permissions.allowSavePicture = doc.properties.allowSavePicture;
    return permissions;
}

GraphPictureContext GraphCommands::pictureContextFor(const Document &doc) const
{
    GraphPictureContext context;
    context.options = &mContext.settings.options;
    context.settings = &mContext.settings.last;
    context.documentIsSwedish = documentIsSwedish(doc);
    context.printerInstalled = mContext.settings.printerInstalled;
    return context;
}

// Runs one graph command: hourglass, start text, generation, result text.
void GraphCommands::runBasicGraph(BasicGraphCommand command, const BasicGraphRequest &request)
{
    WaitCursor wait;
    setStatus(basicGraphStartText(command), false);
    if (openBasicGraph(request)) {
        setStatus(basicGraphSuccessText(command), true);
        return;
    }
    const TextPair failure = basicGraphFailureText(command);
    if (*failure.english)
        setStatus(failure, true);
    else
        mContext.host.statusLine().clearStatus();
}

BasicGraphSelection GraphCommands::currentGraphSelection() const
{
    const ViewerSession &session = mContext.session;
    const UserOptions &options = mContext.settings.options;
    BasicGraphSelection selection = graphSelectionOf(session.shownSheet(), session.flexTotal());
    selection.valueOrderReversed = options.graphValueOrderReversed;
    selection.shortCategoryNames = options.graphByCategoryUseShortCategoryNames;
    selection.locale = QLocale();
    return selection;
}

BasicGraphWindow *GraphCommands::openBasicGraph(const BasicGraphRequest &request)
{
    if (!canGraph())
        return nullptr;
    const Document &doc = *mContext.session.document();
    const BasicGraphResult result = generateBasicGraph(doc, mContext.session.blocks(), mContext.session.flexTotal(),
                                                       request, currentGraphSelection());
    if (!result.done())
        return nullptr;

    ViewerSettings &settings = mContext.settings;
    StatusLine &status = mContext.host.statusLine();
    QWidget *parent = mContext.host.dialogParent();
    QWidget *pooled = takePooledWindow(mContext.session.windowSlots(SlotTable::BasicGraphs),
                                       [&] { return new BasicGraphWindow(settings.isSwedish, status, parent); });
    auto *graph = qobject_cast<BasicGraphWindow *>(pooled);
    if (!graph)
        return nullptr;
    graph->setWindowTitle(result.value().caption);
    // Set as Default Size: kept for this run and stored at once.
    graph->setDefaultSizeHandler([&settings](const FractionGraphDefaultSize &size) {
        settings.last.questionGraphWindowWidth = size.windowWidthTwips;
        settings.last.questionGraphBarWidth = size.barWidth;
        settings.store.writeLastSettings(settings.last);
    });
    FractionGraphDefaultSize defaults;
    defaults.windowWidthTwips = settings.last.questionGraphWindowWidth;
    defaults.barWidth = settings.last.questionGraphBarWidth;
    if (!graph->setUpGraph(result.value(), permissionsFor(doc), defaults))
        return nullptr;
    graph->setPictureContext(pictureContextFor(doc));
    graph->show();
    graph->raise();
    graph->activateWindow();
    return graph;
}

void GraphCommands::popupBlockGraph(qint32 kind)
{
    const BasicGraphCommand command =
        kind == HistogramGraph ? BasicGraphCommand::PopupBlockHistogram : BasicGraphCommand::PopupBlockFraction;
    const Document *doc = mContext.session.document();
    BasicGraphRequest request;
    request.kind = kind;
    const qint32 block = mContext.session.popupBlock();
    if (doc && block >= 0) {
        // The block's columns as the overview shows them.
        request.questions = overviewColumnsOf(block);
        request.name = mContext.session.blocks().blocks[std::size_t(block)].name;
        request.block = block;
        request.showTotalIndex = mContext.session.selectionSteps().differentFromUsedTotal;
    }
    runBasicGraph(command, request); // an empty request fails with the failure text
}

void GraphCommands::questionGraph(qint32 kind)
{
    const Document *doc = mContext.session.document();
    const qint32 q = mContext.session.popupQuestion();
    BasicGraphRequest request;
    request.kind = kind;
    if (doc && q >= 0) {
        request.questions = {q};
        request.name = doc->questions[std::size_t(q)].heading;
        request.showTotalIndex = mContext.session.selectionSteps().differentFromUsedTotal;
    }
    runBasicGraph(questionCommand(kind), request);
}

void GraphCommands::splitGraphByDialog(qint32 kind)
{
    const Document *doc = mContext.session.document();
    const qint32 q = mContext.session.popupQuestion();
    if (!doc || q < 0)
        return;
    const BasicGraphCommand command =
        kind == HistogramGraph ? BasicGraphCommand::QuestionHistogram : BasicGraphCommand::QuestionFractionSplitDialog;
    WaitCursor wait;
    setStatus(basicGraphStartText(command), false);
    const BasicGraphSelection selection = currentGraphSelection();
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    QuestionSelectDialog dialog(
        *doc, q, [&](qint32 s) { return splitPermitted(*doc, s, selection); }, mContext.settings.isSwedish,
        mContext.host.dialogParent());
    dialog.exec();
    QApplication::restoreOverrideCursor();
    if (!dialog.accepted()) {
        mContext.host.statusLine().clearStatus();
        return;
    }
    BasicGraphRequest request;
    request.kind = kind;
    request.questions = {q};
    request.splitQuestion = dialog.chosenQuestion();
    request.name = splitGraphName(*doc, q, request.splitQuestion);
    runBasicGraph(command, request);
}

void GraphCommands::splitGraphByCategory(qint32 kind, int category)
{
    const Document *doc = mContext.session.document();
    const qint32 q = mContext.session.popupQuestion();
    if (!doc || q < 0 || category < 0 || std::size_t(category) >= doc->categories.size())
        return;
    BasicGraphRequest request;
    request.kind = kind;
    request.questions = {q};
    request.splitQuestion = doc->categories[std::size_t(category)];
    request.name = splitGraphName(*doc, q, request.splitQuestion);
    runBasicGraph(questionCommand(kind), request);
}

void GraphCommands::viewBlockGraph(qint32 kind, int block)
{
    const Document *doc = mContext.session.document();
    const BlockCatalogue &blocks = mContext.session.blocks();
    if (!doc || !blocks.blockAt(block))
        return;
    const BasicGraphCommand command =
        kind == HistogramGraph ? BasicGraphCommand::ViewBlockHistogram : BasicGraphCommand::ViewBlockFraction;
    WaitCursor wait;
    BasicGraphRequest request;
    request.kind = kind;
    request.questions = blockGraphQuestions(*doc, blocks, block);
    if (request.questions.empty()) {
        mContext.host.showMessage(QMessageBox::Information, applicationTitle(),
                                  blockWithoutQuestionsMessage(mContext.settings.isSwedish));
        return;
    }
    request.name = blocks.blocks[std::size_t(block)].name;
    request.block = block;
    request.showTotalIndex = mContext.session.selectionSteps().differentFromUsedTotal;
    runBasicGraph(command, request);
}

} // namespace kel
