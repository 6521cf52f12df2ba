// The "kest" module: POST /api/app/kest/<action>.

module kest {
  interface KestChatResult {
    me: string;
    messages: Model.KestRoomMessage[];
    answering: Model.KestAnswer[];
    thread?: Model.KestThread;
    traces: Record<string, Model.RunTrace>;
    reads: boolean;
    kest: { handle: string; name: string; title: string; avatar: string; status: string; needsYou: boolean; lead: boolean }[];
  }
  interface ChatResult {
    agent: Model.AgentView;
    me: string;
    threads: Model.ThreadSummary[];
    total: number;
    approvals: Model.ApprovalView[];
    drafts: Model.DraftView[];
    traces: Record<string, Model.RunTrace>;
    canManage: boolean;
    canWatch: boolean;
    voice: boolean;
    attach: { kind: string; id: string; title: string }[];
  }
  interface ThreadResult {
    agent: Model.AgentView;
    me: string;
    threads: Model.ThreadSummary[];
    total: number;
    thread?: Model.ThreadView;
    approvals: Model.ApprovalView[];
    drafts: Model.DraftView[];
    trace?: Model.RunTrace;
    traces: Record<string, Model.RunTrace>;
    canManage: boolean;
    canWatch: boolean;
    voice: boolean;
    attach: { kind: string; id: string; title: string }[];
  }
  interface RunResult {
    run: Model.RunView;
    agent: Model.AgentView;
    trace: Model.RunTrace;
  }

  chat(handle: string): ChatResult;
  computer;
  hire;
  inbox;
  kestChat(thread?: string): KestChatResult;
  run(handle: string, runId: string): RunResult;
  setup;
  teammate;
  thread(handle: string, threadId: string): ThreadResult;
}
