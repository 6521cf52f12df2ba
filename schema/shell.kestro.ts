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

  // Who did something: a person or a teammate (type "user" or "agent").
  interface ActorView {
    type: string;
    id: string;
    name: string;
    handle?: string;
    avatar?: string;
  }

  // The kest's day for Home: what happened today (newest first), the runs
  // that are working now, and a one-line count of the day.
  interface ActivityResult {
    day: string;
    done: number;
    failed: number;
    items: {
      id: string;
      kind: string;
      actor: ActorView;
      verb: string;
      title: string;
      text?: string;
      href: string;
      at: string;
    }[];
    running: {
      id: string;
      agent: ActorView;
      title: string;
      doing?: string;
      href: string;
      startedAt: string;
    }[];
  }

  // What waits for the user (Needs you), oldest first: approvals a run
  // asked for, a teammate's questions, drafts to look at, tasks to review.
  interface WaitingResult {
    items: {
      id: string;
      kind: string;
      by: ActorView;
      title: string;
      text: string;
      href: string;
      at: string;
      task?: { key: string; title: string };
    }[];
    counts: { approvals: number; asks: number; drafts: number; reviews: number };
  }

  activity(): ActivityResult;
  calendar;
  changelog;
  frame(): FrameResult;
  help;
  products;
  waiting(): WaitingResult;
}
