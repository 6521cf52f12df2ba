#include "PromptBarModel.h"

#include "calls/app.h"

#include <QClipboard>
#include <QDateTime>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

namespace Kestro {

namespace {

enum SourceKind { SkillSource, DocumentSource, MentionSource, CallerSource };

QString textOf(const QVariantMap& map, const char* key)
{
    return map.value(QLatin1String(key)).toString();
}

QVariantList urlList(const QList<QUrl>& urls)
{
    QVariantList out;
    for (const QUrl& url : urls)
        out.append(url);
    return out;
}

InlineOption optionOf(const QVariantMap& map)
{
    // Rows are told apart by key; an option given none is known by its text.
    QString key = textOf(map, "key");
    if (key.isEmpty())
        key = textOf(map, "insert") + QLatin1Char('\n') + textOf(map, "label");
    return {key,
            textOf(map, "insert"),
            map.value(QStringLiteral("mono")).toBool(),
            textOf(map, "hint"),
            textOf(map, "badge"),
            textOf(map, "tip"),
            textOf(map, "face"),
            textOf(map, "label")};
}

} // namespace

PromptBarModel::PromptBarModel(QObject* parent)
    : QObject(parent), m_options(new KeyedList<InlineOption>(
                           [](const InlineOption& o) { return o.key; },
                           {{"label", [](const InlineOption& o) { return QVariant(o.label); }},
                            {"insert", [](const InlineOption& o) { return QVariant(o.insert); }},
                            {"mono", [](const InlineOption& o) { return QVariant(o.mono); }},
                            {"hint", [](const InlineOption& o) { return QVariant(o.hint); }},
                            {"badge", [](const InlineOption& o) { return QVariant(o.badge); }},
                            {"tip", [](const InlineOption& o) { return QVariant(o.tip); }},
                            {"face", [](const InlineOption& o) { return QVariant(o.face); }}},
                           this))
{
    connect(this, &PromptBarModel::sourcesChanged, this, [this] {
        m_sources = buildSources();
        rematch();
    });
    m_sources = buildSources();
}

void PromptBarModel::setMentions(const QVariantList& mentions)
{
    m_mentionList = mentions;
    m_mentions.clear();
    for (const QVariant& v : mentions) {
        const QVariantMap m = v.toMap();
        if (!textOf(m, "handle").isEmpty())
            m_mentions.append({textOf(m, "handle"), textOf(m, "name"), textOf(m, "avatar")});
    }
    emit sourcesChanged();
}

QList<InlineSource> PromptBarModel::buildSources() const
{
    // Skills, documents (when linked), mentions (when any), then the
    // caller's own, in that order.
    QList<InlineSource> out;
    out.append({InlineMenu::skillPattern(),
                {},
                QStringLiteral("Pick a skill"),
                [this](const QString& typed) {
                    if (!m_skills)
                        return QList<InlineOption>();
                    // Everyone's skills and those of the teammate written to.
                    QList<InlineMenu::Skill> offered;
                    for (const InlineMenu::Skill& skill : *m_skills)
                        if (skill.agent.isEmpty() || skill.agent == m_skillsFor)
                            offered.append(skill);
                    return InlineMenu::skillOptions(offered, typed);
                },
                // A space after the skill, so the "/" menu does not open
                // again on what was just picked.
                true,
                SkillSource});
    if (m_docLinks)
        out.append({InlineMenu::documentPattern(),
                    {},
                    QStringLiteral("Link a doc"),
                    [this](const QString& typed) {
                        return m_documents ? InlineMenu::documentOptions(*m_documents, typed)
                                           : QList<InlineOption>();
                    },
                    false,
                    DocumentSource});
    if (!m_mentions.isEmpty())
        out.append({InlineMenu::mentionPattern(), m_mentionLabel + QStringLiteral(". Enter picks"),
                    QStringLiteral("Mention"),
                    [this](const QString& typed) { return InlineMenu::mentionOptions(m_mentions, typed); },
                    true, MentionSource});
    for (const QVariant& v : m_extra) {
        const QVariantMap source = v.toMap();
        QList<InlineOption> options;
        for (const QVariant& o : source.value(QStringLiteral("options")).toList())
            options.append(optionOf(o.toMap()));
        out.append(
            {QRegularExpression(textOf(source, "pattern"), QRegularExpression::UseUnicodePropertiesOption),
             textOf(source, "title"), textOf(source, "label"),
             [options](const QString& typed) {
                 QList<InlineOption> kept;
                 for (const InlineOption& o : options)
                     if (o.label.contains(typed, Qt::CaseInsensitive))
                         kept.append(o);
                 return kept;
             },
             false});
    }
    return out;
}

QString PromptBarModel::menuTitle() const
{
    if (!m_hit)
        return {};
    switch (m_sources.value(m_hit->source).tag) {
    case SkillSource:
        return m_skills ? QStringLiteral("Skills. Keep typing to filter. Enter picks")
                        : QStringLiteral("Loading the skills");
    case DocumentSource:
        return m_documents ? QStringLiteral("Link a doc. Keep typing to filter. Enter picks")
                           : QStringLiteral("Loading the docs");
    default:
        return m_sources.value(m_hit->source).title;
    }
}

QString PromptBarModel::menuLabel() const
{
    return m_hit ? m_sources.value(m_hit->source).label : QString();
}

void PromptBarModel::edited(const QString& text, int caret, const QString& preedit)
{
    m_text = text;
    m_caret = std::clamp(caret, 0, int(text.size()));
    const QString before = text.left(m_caret) + preedit;
    if (before != m_beforeCaret)
        m_dismissed = false;
    m_beforeCaret = before;
    rematch();
}

void PromptBarModel::rematch()
{
    // source -1: nothing matched.
    InlineHit hit =
        (m_dismissed ? std::nullopt : InlineMenu::match(m_sources, m_beforeCaret)).value_or(InlineHit{});
    const int tag = hit.source >= 0 ? m_sources[hit.source].tag : -1;
    if (tag == SkillSource)
        loadSkills();
    if (tag == DocumentSource)
        loadDocuments();
    const QList<InlineOption> options =
        hit.source >= 0 ? m_sources[hit.source].options(hit.typed) : QList<InlineOption>();
    // A loaded list with nothing that matches closes the menu; a list
    // still loading keeps it open with its loading heading.
    const bool loading = (tag == SkillSource && !m_skills) || (tag == DocumentSource && !m_documents);
    if (options.isEmpty() && !loading)
        hit.source = -1;
    const bool sameSource = hit.source == (m_hit ? m_hit->source : -1);
    const QString activeKey = m_options->keyAt(m_active);
    m_hit = hit.source >= 0 ? std::optional<InlineHit>(hit) : std::nullopt;
    m_options->apply(hit.source >= 0 ? options : QList<InlineOption>());
    // The active row stays on its option while the list narrows, and
    // starts at the top otherwise.
    const int kept = sameSource ? m_options->indexOf(activeKey) : -1;
    setActive(kept >= 0 ? kept : 0);
    emit menuChanged();
}

void PromptBarModel::setActive(int row)
{
    if (row != m_active) {
        m_active = row;
        emit activeRowChanged();
    }
}

bool PromptBarModel::key(Key key)
{
    if (!m_hit)
        return false;
    const int rows = m_options->count();
    switch (key) {
    case Key::Up:
        if (rows > 0)
            setActive((m_active + rows - 1) % rows);
        return true;
    case Key::Down:
        if (rows > 0)
            setActive((m_active + 1) % rows);
        return true;
    case Key::Enter:
    case Key::Tab:
        if (rows == 0)
            return false; // still loading: the keys act as if no menu were open
        pick(m_active);
        return true;
    case Key::Escape:
        close();
        return true;
    }
    return false;
}

void PromptBarModel::hover(int row)
{
    if (row >= 0 && row < m_options->count())
        setActive(row);
}

void PromptBarModel::pick(int row)
{
    if (!m_hit || row < 0 || row >= m_options->count())
        return;
    const InlineOption option = m_options->records().at(row);
    const InlineHit hit = *m_hit;
    const bool space = m_sources[hit.source].spaceAfter;
    // The hit was measured on the text with the preedit; the editor's text
    // ends at the caret there.
    const QString text = m_text.left(m_caret) + m_beforeCaret.mid(m_caret) + m_text.mid(m_caret);
    const InlineMenu::Picked picked = InlineMenu::pick(text, hit, option, space);
    m_hit.reset();
    m_options->apply({});
    emit menuChanged();
    emit this->picked(picked.text, picked.caret);
}

void PromptBarModel::close()
{
    if (!m_hit)
        return;
    m_dismissed = true;
    m_hit.reset();
    m_options->apply({});
    emit menuChanged();
}

void PromptBarModel::setSkills(const QVariantList& skills)
{
    QList<InlineMenu::Skill> list;
    for (const QVariant& v : skills) {
        const QVariantMap m = v.toMap();
        list.append({textOf(m, "id"), textOf(m, "name"), textOf(m, "description"), textOf(m, "agent")});
    }
    m_skills = list;
    rematch();
}

void PromptBarModel::setDocuments(const QVariantList& documents)
{
    QList<InlineMenu::Document> list;
    for (const QVariant& v : documents) {
        const QVariantMap m = v.toMap();
        list.append({textOf(m, "slug"), textOf(m, "title")});
    }
    m_documents = list;
    rematch();
}

void PromptBarModel::loadSkills()
{
    if (m_skills || m_loadingSkills)
        return;
    m_loadingSkills = true;
    QPointer<PromptBarModel> self(this);
    [](QPointer<PromptBarModel> self) -> QCoro::Task<> {
        QList<InlineMenu::Skill> skills;
        try {
            const auto answer = co_await Calls::app::skillOptionsAction();
            if (!self)
                co_return;
            for (const auto& s : answer.skills)
                skills.append({s.id, s.name, s.description, s.agent.value_or(QString())});
        } catch (const std::exception&) {
            // No skills to offer: the menu closes rather than keep loading.
        }
        if (!self)
            co_return;
        self->m_loadingSkills = false;
        self->m_skills = skills;
        self->rematch();
    }(self);
}

void PromptBarModel::loadDocuments()
{
    if (m_documents || m_loadingDocuments)
        return;
    m_loadingDocuments = true;
    QPointer<PromptBarModel> self(this);
    [](QPointer<PromptBarModel> self) -> QCoro::Task<> {
        QList<InlineMenu::Document> documents;
        try {
            const auto answer = co_await Calls::app::attachablesAction();
            for (const auto& item : answer.items)
                if (item.kind == QLatin1String("doc"))
                    documents.append({item.id, item.title});
        } catch (const std::exception&) {
        }
        if (!self)
            co_return;
        self->m_loadingDocuments = false;
        self->m_documents = documents;
        self->rematch();
    }(self);
}

QString PromptBarModel::pastedImageName(const QDateTime& at)
{
    return QStringLiteral("Pasted image %1.png").arg(at.toString(QStringLiteral("yyyy-MM-dd HH.mm")));
}

QStringList PromptBarModel::pastedFiles() const
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return {};
    if (data->hasUrls()) {
        const QStringList files = localFiles(urlList(data->urls()));
        if (!files.isEmpty())
            return files;
    }
    if (data->hasText())
        return {};
    QImage image;
    if (data->hasImage())
        image = qvariant_cast<QImage>(data->imageData());
    if (image.isNull())
        for (const char* type : {"image/png", "image/tiff"})
            if (data->hasFormat(QLatin1String(type)) && image.loadFromData(data->data(QLatin1String(type))))
                break;
    if (image.isNull())
        return {};
    // A fresh folder per image, kept after this object goes: the caller
    // uploads the file later.
    QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/kestro-paste-XXXXXX"));
    folder.setAutoRemove(false);
    if (!folder.isValid())
        return {};
    const QString path = folder.filePath(pastedImageName(QDateTime::currentDateTime()));
    return image.save(path, "PNG") ? QStringList{path} : QStringList{};
}

bool PromptBarModel::clipboardHasFiles() const
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data &&
           ((data->hasUrls() && !localFiles(urlList(data->urls())).isEmpty()) || data->hasImage() ||
            data->hasFormat(QStringLiteral("image/png")) || data->hasFormat(QStringLiteral("image/tiff")));
}

QStringList PromptBarModel::localFiles(const QVariantList& urls)
{
    QStringList files;
    for (const QVariant& v : urls) {
        const QUrl url = v.toUrl();
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    return files;
}

QString PromptBarModel::readOnlyNotice(const QString& role, const QStringList& allow)
{
    if (allow.contains(role))
        return {};
    if (role == QLatin1String("approver"))
        return QStringLiteral(
            "You're an approver here, so you decide what waits on people and write nothing else.");
    if (role == QLatin1String("guest"))
        return QStringLiteral(
            "You're a guest here, so you can read and comment on what someone shared with you.");
    return QStringLiteral("You're a viewer here, so you can read but not write.");
}

} // namespace Kestro
