#pragma once

#include "calls/app.h"
#include "calls/kest.h"

#include <QString>
#include <QStringList>

namespace Kestro::KestWords {

using Kest = QList<Calls::kest::KestChatResultKest>;

// Display names of teammates by handle, in the kest's order ("Quill",
// "Quill and Atlas", "Quill, Atlas and Forge"); an unknown handle reads as
// itself, after the known ones.
QString names(const QStringList& handles, const Kest& kest);

// The line under the composer after a send: who took the message (the
// lead triaging, who started, who took it into an answer in progress, who
// stopped), then each teammate that could not answer and why.
QString noteOf(const Calls::app::PostKestMessageActionResult& result, const Kest& kest);

// The room composer's hint, from the @mentions typed so far.
QString hintOf(const QString& text, const Kest& kest);

// "Everyone: your team, 5 teammates".
QString everyoneLine(const Kest& kest);

// The empty room's explanation, by whether the kest has a lead.
QString emptyText(const Kest& kest);

// "1 reply", "12 replies".
QString replies(qint64 count);

// "An approval waits for you in Needs you", "3 approvals wait for you in
// Needs you", or nothing.
QString approvals(qsizetype count);

} // namespace Kestro::KestWords
