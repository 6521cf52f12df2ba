#pragma once

#include <QString>

#include <optional>

namespace Kestro::AnalyticsFormat {

// A known place visits come from. `kind` is one of "ai", "email", "search",
// "social"; `iconHost` is the domain whose icon stands for the source.
struct TrafficSource {
    QString name;
    QString kind;
    QString iconHost;
    bool operator==(const TrafficSource&) const = default;
};

// The known source a referrer host belongs to, in any letter case and with
// any subdomain, or nothing: such a host is shown under its own name.
std::optional<TrafficSource> trafficSource(const QString& host);

// The icon host of a browser or operating system as the analytics service
// names it ("Chrome", "Mac OS"); empty when it has no icon.
QString browserIconHost(const QString& browser);
QString osIconHost(const QString& os);

// Service paths of a host's icon and of a country's flag.
QString iconPath(const QString& host);
QString flagPath(const QString& countryCode);

// What a breakdown row shows for a raw value. `dimension` is the breakdown's
// name, singular or plural ("referrer"/"referrers", "country", "os",
// "exit_links", ...). A missing value reads "Direct/None" for referrers and
// "Unknown" elsewhere; referrers and exit links lose their scheme, "www."
// and trailing "/".
QString displayLabel(const QString& dimension, const QString& value);

// Whether a typed site domain is a plausible host name: lower-case labels of
// letters, digits and inner hyphens, at least two, ending in a letters-only
// label.
bool isValidHostName(const QString& name);

} // namespace Kestro::AnalyticsFormat
