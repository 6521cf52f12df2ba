// The "analytics" module: POST /api/app/analytics/<action>.

module analytics {
  interface SitesResult {
    sites: Model.SiteView[];
    canManage: boolean;
  }
  interface DashboardResult {
    range: JSONValue;
    site: Model.SiteView;
    totals: { visitors: number; visits: number; pageviews: number; bounceRate: number; duration: number };
    series: { at: string; visitors: number; visits: number; pageviews: number }[];
    live: number;
  }
  interface SettingsResult {
    site: Model.SiteView;
    canManage: boolean;
  }

  dashboard(siteId: string, range?: JSONValue): DashboardResult;
  settings(siteId: string, section?: string): SettingsResult;
  sites(): SitesResult;
}
