// The "shell" module: POST /api/app/shell/<action>.

module shell {
  // The signed-in frame: who, which workspace (and its role), the other
  // workspaces, the sidebar's counts and the kest.
  interface FrameResult {
    user: { id: string; name: string; email: string; avatar?: string };
    workspace: { id: string; name: string; slug: string; role: string; plan?: string; logo?: string };
    workspaces: { id: string; name: string; slug: string; role: string; current: boolean }[];
    counts: { needsYou: number; tasks: number; inbox: number; notifications: number };
    kest: Model.TeammateView[];
    products?: string[];
  }

  activity;
  calendar;
  changelog;
  frame(): FrameResult;
  help;
  products;
  waiting;
}
