#include "app/TWRecoveryCopy.h"

#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWDocumentText.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWPaths.h"
#include "preview/TWPageComposer.h"
#include "preview/TWPreview.h"

#include <QDir>
#include <QTextCursor>
#include <QTextDocument>
#include <QtEndian>

#include <algorithm>
#include <cstdio>

namespace {

constexpr char folderName[] = "Recovery";
// Each document has two files, written in turn: the one being written is always the older,
// so the newer stays whole meanwhile. Writing over a file in place, rather than writing a new
// one and renaming it over the old, spares the event loop the milliseconds the file system
// takes to free the old file and to start writing out the new one at each replacement.
constexpr const char *slotSuffixes[] = {".1", ".2"};
constexpr int slotCount = 2;
// Each file: this line and its number in the order of writing (8 bytes, little-endian), then
// each field as its length in bytes (8 bytes) and its UTF-16 text (little-endian), so that any
// text comes back exactly, whatever it holds. The line and number are written last, over
// zeros written first: a file that does not start with them was not written to its end.
constexpr char magic[] = "Tagwright recovery copy 2\n";
constexpr qsizetype headerSize = sizeof(magic) - 1 + sizeof(quint64);

enum Document { html, templateDocument, styleSheet };
constexpr int fieldsPerDocument = 2;

// The number of a whole file, from its first bytes; nothing for a file not written to its end.
std::optional<quint64> generationOf(QByteArrayView bytes)
{
    if (bytes.size() < headerSize || !bytes.startsWith(magic))
        return std::nullopt;
    return qFromLittleEndian<quint64>(bytes.constData() + headerSize - sizeof(quint64));
}

QByteArray lengthBytes(qint64 bytes)
{
    QByteArray length(sizeof(quint64), Qt::Uninitialized);
    qToLittleEndian<quint64>(quint64(bytes), length.data());
    return length;
}

// The bytes of a text as the file holds them; on a little-endian machine the text's own
// memory, not a copy.
QByteArray textBytes(const QString &text)
{
    const auto *data = reinterpret_cast<const char *>(text.utf16());
    const qsizetype size = text.size() * qsizetype(sizeof(char16_t));
    if constexpr (QSysInfo::ByteOrder == QSysInfo::LittleEndian)
        return QByteArray::fromRawData(data, size);
    QByteArray bytes(size, Qt::Uninitialized);
    qToLittleEndian<char16_t>(text.utf16(), text.size(), bytes.data());
    return bytes;
}

} // namespace

TWRecoveryCopy *TWRecoveryCopy::shared()
{
    static TWRecoveryCopy *copy = new TWRecoveryCopy();
    return copy;
}

TWRecoveryCopy::TWRecoveryCopy()
{
    // Texts are kept in a document's own form: the HTML and the style sheet taken from their
    // documents piece by piece; the template, always small, made from its combined text at once.
    const auto html = [] { return TWEditWindowController::sharedEditWindowController(); };
    const auto templateWindow = [] { return TWTemplateWindowController::sharedTemplateController(); };
    const auto css = [] { return TWCSSWindowController::sharedCSSController(); };
    documents = {
        {"HTML", [html] { return html()->htmlFilename(); }, [html] { return html()->textView()->document(); }, {}},
        {"Template", [templateWindow] { return templateWindow()->templateFilename(); }, {},
         [templateWindow] { return TWDocumentText::toDocument(templateWindow()->getCombinedText()); }},
        {"Style Sheet", [css] { return css()->cssFilename(); }, [css] { return css()->textView()->document(); }, {}},
    };
    pauseTimer.setSingleShot(true);
    longestWaitTimer.setSingleShot(true);
    connect(&pauseTimer, &QTimer::timeout, this, &TWRecoveryCopy::beginWrite);
    connect(&longestWaitTimer, &QTimer::timeout, this, &TWRecoveryCopy::beginWrite);
}

QString TWRecoveryCopy::folder()
{
    return TWApplicationDataFolder() + QLatin1Char('/') + QLatin1String(folderName);
}

QList<QByteArray> TWRecoveryCopy::encode(const QList<QString> &fields)
{
    // The header's place, kept by zeros until the file is whole.
    QList<QByteArray> pieces{QByteArray(headerSize, '\0')};
    for (const QString &field : fields) {
        pieces << lengthBytes(field.size() * qsizetype(sizeof(char16_t)));
        pieces << textBytes(field);
    }
    return pieces;
}

std::optional<QList<QString>> TWRecoveryCopy::decode(const QByteArray &bytes, int count)
{
    if (!generationOf(bytes))
        return std::nullopt;
    QList<QString> fields;
    qsizetype at = headerSize;
    for (int i = 0; i < count; ++i) {
        if (bytes.size() - at < qsizetype(sizeof(quint64)))
            return std::nullopt;
        const quint64 length = qFromLittleEndian<quint64>(bytes.constData() + at);
        at += sizeof(quint64);
        if (length % sizeof(char16_t) != 0 || length > quint64(bytes.size() - at))
            return std::nullopt;
        QString field(qsizetype(length / sizeof(char16_t)), Qt::Uninitialized);
        qFromLittleEndian<char16_t>(bytes.constData() + at, field.size(), field.data());
        fields << field;
        at += qsizetype(length);
    }
    if (at != bytes.size())
        return std::nullopt;
    return fields;
}

QString TWRecoveryCopy::slotPath(const char *document, int slot)
{
    return folder() + QLatin1Char('/') + QLatin1String(document) + QLatin1String(slotSuffixes[slot]);
}

std::optional<QList<QString>> TWRecoveryCopy::read(const char *document)
{
    std::optional<QList<QString>> newest;
    quint64 newestGeneration = 0;
    for (int slot = 0; slot < slotCount; ++slot) {
        QFile file(slotPath(document, slot));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        const std::optional<quint64> generation = generationOf(bytes);
        if (!generation || (newest && *generation < newestGeneration))
            continue;
        if (std::optional<QList<QString>> fields = decode(bytes, fieldsPerDocument)) {
            (*fields)[1] = TWDocumentText::fromDocument(fields->at(1));
            newest = std::move(fields);
            newestGeneration = *generation;
        }
    }
    return newest;
}

void TWRecoveryCopy::findNewestSlots()
{
    for (Document &document : documents) {
        quint64 newestGeneration = 0;
        document.newestSlot = -1;
        for (int slot = 0; slot < slotCount; ++slot) {
            QFile file(slotPath(document.fileName, slot));
            const std::optional<quint64> generation
                = file.open(QIODevice::ReadOnly) ? generationOf(file.read(headerSize)) : std::nullopt;
            if (generation && (document.newestSlot < 0 || *generation > newestGeneration)) {
                document.newestSlot = slot;
                newestGeneration = *generation;
            }
            lastGeneration = std::max(lastGeneration, generation.value_or(0));
        }
    }
}

bool TWRecoveryCopy::restore()
{
    bool restored = false;
    for (int document = 0; document < documents.size(); ++document) {
        const char *fileName = documents.at(document).fileName;
        if (!QFile::exists(slotPath(fileName, 0)) && !QFile::exists(slotPath(fileName, 1)))
            continue;
        const std::optional<QList<QString>> fields = read(fileName);
        if (!fields) {
            std::fprintf(stderr, "The recovery copy of the %s in %s could not be read; it is left as it is.\n",
                         fileName, qPrintable(folder()));
            continue;
        }
        const QString &name = fields->at(0);
        const QString &text = fields->at(1);
        switch (document) {
        case html: {
            TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
            window->loadHTML(text);
            window->setHTMLFilename(name);
            if (TWPreview *viewer = TWPreview::shared(); viewer && !name.isEmpty())
                viewer->setBaseURL(TWPageComposer::fileURL(name));
            break;
        }
        case templateDocument: {
            TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
            window->loadTemplate(text);
            window->setTemplateFilename(name);
            break;
        }
        default: {
            TWCSSWindowController *window = TWCSSWindowController::sharedCSSController();
            window->loadCSS(text);
            window->setCSSFilename(name);
            break;
        }
        }
        restored = true;
    }
    return restored;
}

void TWRecoveryCopy::start()
{
    if (started)
        return;
    started = true;
    findNewestSlots();
    TWEditWindowController *htmlWindow = TWEditWindowController::sharedEditWindowController();
    TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
    TWCSSWindowController *cssWindow = TWCSSWindowController::sharedCSSController();
    watch(htmlWindow->textView()->document(), html);
    watch(templateWindow->topTextView()->document(), templateDocument);
    watch(templateWindow->bottomTextView()->document(), templateDocument);
    watch(cssWindow->textView()->document(), styleSheet);
    connect(htmlWindow, &TWEditWindowController::htmlFilenameChanged, this, [this] { changed(html); });
    connect(templateWindow, &TWTemplateWindowController::templateFilenameChanged, this,
            [this] { changed(templateDocument); });
    connect(cssWindow, &TWCSSWindowController::cssFilenameChanged, this, [this] { changed(styleSheet); });
}

void TWRecoveryCopy::watch(QTextDocument *text, int document)
{
    // Colours never change the text: only real changes reach here.
    connect(text, &QTextDocument::contentsChange, this, [this, document](int position, int removed, int added) {
        if (removed > 0 || added > 0)
            changedAt(document, position);
    });
}

void TWRecoveryCopy::changedAt(int document, int position)
{
    // A text being taken out of its document stays the start of the document as it is now.
    for (Job &job : jobs) {
        if (job.document == document && !job.writing && position < job.taken) {
            job.text.truncate(position);
            job.taken = position;
        }
    }
    changed(document);
}

void TWRecoveryCopy::changed(int document)
{
    if (!started)
        return;
    documents[document].dirty = true;
    pauseTimer.start(pauseMilliseconds);
    if (!longestWaitTimer.isActive())
        longestWaitTimer.start(longestWaitMilliseconds);
}

void TWRecoveryCopy::beginWrite()
{
    pauseTimer.stop();
    longestWaitTimer.stop();
    if (isWriting())
        return; // the end of this write looks again
    for (int document = 0; document < documents.size(); ++document) {
        if (documents.at(document).dirty)
            jobs << Job(document);
    }
    if (!jobs.isEmpty() && !sliceScheduled) {
        sliceScheduled = true;
        QTimer::singleShot(0, this, &TWRecoveryCopy::writeSlice);
    }
}

bool TWRecoveryCopy::takeText(Job &job)
{
    const Document &document = documents.at(job.document);
    if (!document.source) {
        job.text = document.text();
        return true;
    }
    QTextDocument *text = document.source();
    const int length = text->characterCount() - 1;
    if (job.taken == 0)
        job.text.reserve(length);
    const int end = std::min(length, job.taken + sliceCharacters);
    QTextCursor cursor(text);
    cursor.setPosition(job.taken);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    // The document's own form: its line breaks are block separators, which restore() turns back.
    job.text += cursor.selectedText();
    job.taken = end;
    return end == length;
}

bool TWRecoveryCopy::startWriting(Job &job)
{
    // The text is the document as it is now: later changes make it dirty again.
    Document &document = documents[job.document];
    document.dirty = false;
    job.writing = true;
    job.fields = {document.documentFileName(), job.text};
    job.text.clear();
    job.pieces = encode(job.fields);
    QDir().mkpath(folder());
    // Over the older file, in place: its pages are reused rather than freed and taken anew.
    job.slot = document.newestSlot == 0 ? 1 : 0;
    file = std::make_unique<QFile>(slotPath(document.fileName, job.slot));
    return file->open(QIODevice::ReadWrite);
}

void TWRecoveryCopy::writeSlice()
{
    sliceScheduled = false;
    if (jobs.isEmpty())
        return;
    Job &job = jobs.first();
    if (!job.writing) {
        if (takeText(job) && !startWriting(job)) {
            abandonJob();
            return;
        }
        if (!job.writing) {
            sliceScheduled = true;
            QTimer::singleShot(0, this, &TWRecoveryCopy::writeSlice);
            return;
        }
    }
    qint64 budget = sliceBytes;
    while (budget > 0 && job.piece < job.pieces.size()) {
        const QByteArray &bytes = job.pieces.at(job.piece);
        const qint64 length = std::min<qint64>(budget, bytes.size() - job.offset);
        if (file->write(bytes.constData() + job.offset, length) != length) {
            abandonJob();
            return;
        }
        budget -= length;
        job.offset += length;
        if (job.offset == bytes.size()) {
            ++job.piece;
            job.offset = 0;
        }
    }
    if (job.piece == job.pieces.size())
        finishJob();
    if (!jobs.isEmpty()) {
        sliceScheduled = true;
        QTimer::singleShot(0, this, &TWRecoveryCopy::writeSlice);
    } else if (std::any_of(documents.cbegin(), documents.cend(), [](const Document &d) { return d.dirty; })) {
        // Changes made while writing: written after the next pause, or soon at the latest.
        pauseTimer.start(pauseMilliseconds);
        if (!longestWaitTimer.isActive())
            longestWaitTimer.start(longestWaitMilliseconds);
    }
}

void TWRecoveryCopy::finishJob()
{
    const Job &job = jobs.first();
    // What is left of an older, longer text goes; then the header marks the file whole.
    QByteArray header = QByteArray(magic) + lengthBytes(0);
    qToLittleEndian<quint64>(++lastGeneration, header.data() + headerSize - sizeof(quint64));
    const bool whole = file->resize(file->pos()) && file->seek(0) && file->write(header) == header.size()
        && file->flush();
    file->close();
    file.reset();
    if (whole) {
        documents[job.document].newestSlot = job.slot;
        ++writes;
    } else {
        documents[job.document].dirty = true;
    }
    jobs.removeFirst();
}

void TWRecoveryCopy::abandonJob()
{
    const int document = jobs.first().document;
    if (file) {
        std::fprintf(stderr, "The recovery copy could not be written to %s: %s\n", qPrintable(file->fileName()),
                     qPrintable(file->errorString()));
        file->close();
        file.reset();
    }
    // Tried again at the next change, not in a loop; the newer file is still whole.
    documents[document].dirty = true;
    jobs.removeFirst();
}

void TWRecoveryCopy::writeNow()
{
    // Twice: changes made while a write was under way are written in the second round.
    for (int round = 0; round < 2; ++round) {
        beginWrite();
        while (isWriting())
            writeSlice();
    }
}

void TWRecoveryCopy::discard()
{
    pauseTimer.stop();
    longestWaitTimer.stop();
    if (file) {
        file->close();
        file.reset();
    }
    jobs.clear();
    for (Document &document : documents) {
        document.dirty = false;
        document.newestSlot = -1;
    }
    QDir(folder()).removeRecursively();
}
