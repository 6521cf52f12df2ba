#include "KestWords.h"

#include <QRegularExpression>

namespace Kestro::KestWords {

namespace {

const Calls::kest::KestChatResultKest* leadOf(const Kest& kest)
{
    for (const auto& mate : kest)
        if (mate.lead)
            return &mate;
    return nullptr;
}

QString listed(const QStringList& parts)
{
    if (parts.size() <= 1)
        return parts.value(0);
    return parts.mid(0, parts.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" and ") + parts.last();
}

QString sentence(const QStringList& handles, const Kest& kest, const char* one, const char* many)
{
    if (handles.isEmpty())
        return {};
    return names(handles, kest) + QLatin1Char(' ') + QLatin1String(handles.size() == 1 ? one : many);
}

} // namespace

QString names(const QStringList& handles, const Kest& kest)
{
    QStringList known, unknown;
    for (const auto& mate : kest)
        if (handles.contains(mate.handle) && !known.contains(mate.name))
            known.append(mate.name.isEmpty() ? mate.handle : mate.name);
    for (const QString& handle : handles) {
        const bool inKest =
            std::any_of(kest.cbegin(), kest.cend(), [&](const auto& mate) { return mate.handle == handle; });
        if (!inKest && !unknown.contains(handle))
            unknown.append(handle);
    }
    return listed(known + unknown);
}

QString noteOf(const Calls::app::PostKestMessageActionResult& result, const Kest& kest)
{
    QStringList sentences;
    if (result.triaging.value_or(false)) {
        const auto* lead = leadOf(kest);
        sentences.append((lead ? lead->name : QStringLiteral("The lead")) +
                         QStringLiteral(" is seeing who this is for."));
    }
    sentences.append(sentence(result.started.value_or(QStringList()), kest, "is on it.", "are on it."));
    sentences.append(sentence(result.handed.value_or(QStringList()), kest,
                              "takes it into the answer in progress.",
                              "take it into the answer in progress."));
    sentences.append(sentence(result.stopped.value_or(QStringList()), kest, "stopped.", "stopped."));
    for (const auto& skipped :
         result.skipped.value_or(QList<Calls::app::PostKestMessageActionResultSkipped>()))
        sentences.append(names({skipped.agent}, kest) + QStringLiteral(" can't answer now. ") +
                         skipped.error);
    sentences.removeAll(QString());
    return sentences.join(QLatin1Char(' '));
}

QString hintOf(const QString& text, const Kest& kest)
{
    static const QRegularExpression mention(QStringLiteral("(?:^|[^\\w@])@([\\w-]+)"));
    QStringList handles;
    bool everyone = false;
    for (auto it = mention.globalMatch(text); it.hasNext();) {
        const QString handle = it.next().captured(1).toLower();
        if (handle == QLatin1String("all") || handle == QLatin1String("everyone"))
            everyone = true;
        else if (std::any_of(kest.cbegin(), kest.cend(),
                             [&](const auto& mate) { return mate.handle.toLower() == handle; }))
            for (const auto& mate : kest)
                if (mate.handle.toLower() == handle)
                    handles.append(mate.handle);
    }
    if (everyone)
        return QStringLiteral("Goes to everyone");
    if (!handles.isEmpty())
        return QStringLiteral("Goes to ") + names(handles, kest);
    if (const auto* lead = leadOf(kest)) {
        const QString name = lead->name.isEmpty() ? QStringLiteral("The lead") : lead->name;
        return name + QStringLiteral(" sees who it's for · @ calls on a teammate · @all calls on everyone");
    }
    return QStringLiteral("@ calls on a teammate");
}

QString everyoneLine(const Kest& kest)
{
    return QStringLiteral("Everyone: your team, ") + (kest.size() == 1
                                                          ? QStringLiteral("1 teammate")
                                                          : QStringLiteral("%1 teammates").arg(kest.size()));
}

QString emptyText(const Kest& kest)
{
    QString unaddressed;
    if (const auto* lead = leadOf(kest))
        unaddressed = QStringLiteral("Name no one and %1 sees whether it's for the kest.").arg(lead->name);
    else if (!kest.isEmpty())
        unaddressed = QStringLiteral("Name no one and %1 answers what names no one.").arg(kest.first().name);
    return QStringLiteral(
               "Everyone in the workspace and every teammate reads this chat. @mention a teammate to "
               "bring it in, or @all for everyone. ") +
           unaddressed +
           QStringLiteral(" Answers come in the message's thread, where you can carry on, and teammates post "
                          "here when they finish work.");
}

QString replies(qint64 count)
{
    return count == 1 ? QStringLiteral("1 reply") : QStringLiteral("%1 replies").arg(count);
}

QString approvals(qsizetype count)
{
    if (count <= 0)
        return {};
    return (count == 1 ? QStringLiteral("An approval waits for you")
                       : QStringLiteral("%1 approvals wait for you").arg(count)) +
           QStringLiteral(" in Needs you");
}

} // namespace Kestro::KestWords
