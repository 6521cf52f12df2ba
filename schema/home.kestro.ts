// The "home" module: POST /api/app/home/<action>.

module home {
  interface HomeResult {
    first: string;
    connection: { status: string; method?: string };
    plan: string;
    kest: { reads: string[]; handle: string; name: string; title: string; avatar: string; status: string }[];
    inbox: { count: number; minutes: number };
    connect: boolean;
    routines: {
      id: string; agent: string; name: string; days: number[]; hour: number; minute: number;
      every?: number; cron?: string; timezone: string; paused: boolean;
    }[];
    zone: string;
    templates: Model.TemplateView[];
    canManage: boolean;
  }

  home(): HomeResult;
}
