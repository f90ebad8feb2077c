#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

class QTextDocument;

// A copy of the three documents (the HTML, the template, the style sheet) with their file
// names, kept in the data folder while Tagwright runs. The texts otherwise reach the disk only
// at quit; with the copy, a crash, a kill or a power cut costs at most the last seconds of
// typing. The copy is written a second after typing pauses, and at least every second and a
// half while it goes on; only documents that changed are written, and both taking the text
// out of its document and writing it happen in small pieces between events, so that typing
// never waits for it. Each document has two files, written in turn, so one is always whole. A clean quit removes it; a start that finds it puts its texts back.
class TWRecoveryCopy : public QObject
{
    Q_OBJECT
public:
    static TWRecoveryCopy *shared();

    // Where the copy lives.
    static QString folder();

    // Puts back the texts and file names of a copy left by a run that did not end cleanly.
    // Answers whether anything was put back.
    bool restore();
    // From now on, every change of a document is copied.
    void start();
    // The run ends cleanly: the copy goes.
    void discard();
    // Writes every pending change now, in one go (at a quit whose state could not be saved).
    void writeNow();

    bool isWriting() const { return !jobs.isEmpty(); }
    // The newest whole copy of a document ("HTML", "Template", "Style Sheet"): its file name
    // and its text (as string() gives it); nothing when there is none.
    static std::optional<QList<QString>> read(const char *document);
    // Copies written since start (tests and benchmarks).
    int writesDone() const { return writes; }

    // How long after the last change, and at most after the first unwritten one, the copy is
    // written.
    static constexpr int pauseMilliseconds = 1000;
    static constexpr int longestWaitMilliseconds = 1500;
    // The most taken from a document, and written, in one turn of the event loop.
    static constexpr int sliceCharacters = 1 << 17;
    static constexpr qint64 sliceBytes = 1 << 18;

private:
    // One document of the copy: the name its files go by, and where its file name and text
    // come from: a text document, read in pieces, or (for the small template) a text made at once.
    struct Document
    {
        const char *fileName;
        std::function<QString()> documentFileName;
        std::function<QTextDocument *()> source;
        std::function<QString()> text;
        bool dirty = false;
        // Which of the document's two files holds its newest whole copy; -1 for neither.
        int newestSlot = -1;
    };
    struct Job
    {
        explicit Job(int document) : document(document) {}
        int document;
        // Which of the document's two files this write goes over.
        int slot = 0;
        // The text taken so far: always the start of the document as it is now.
        QString text;
        int taken = 0;
        bool writing = false;
        // The texts written, kept alive while their bytes are written straight from them.
        QList<QString> fields;
        QList<QByteArray> pieces;
        qsizetype piece = 0;
        qint64 offset = 0;
    };

    TWRecoveryCopy();
    void watch(QTextDocument *text, int document);
    void changed(int document);
    void changedAt(int document, int position);
    // Takes one more piece of the document's text; answers whether all of it is taken.
    bool takeText(Job &job);
    bool startWriting(Job &job);
    void beginWrite();
    void writeSlice();
    void finishJob();
    void abandonJob();
    static QList<QByteArray> encode(const QList<QString> &fields);
    static std::optional<QList<QString>> decode(const QByteArray &bytes, int count);
    static QString slotPath(const char *document, int slot);
    void findNewestSlots();

    QList<Document> documents;
    QList<Job> jobs;
    std::unique_ptr<QFile> file;
    QTimer pauseTimer;
    QTimer longestWaitTimer;
    bool started = false;
    bool sliceScheduled = false;
    int writes = 0;
    // The number of the last file written, here or by an earlier run.
    quint64 lastGeneration = 0;
};
