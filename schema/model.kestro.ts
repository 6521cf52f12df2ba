// The service's type declarations that the client's records are generated
// from (tools/gen/kestro_schema.py). A TypeScript-declaration subset:
//
//   namespace Model { ... }     shared views, generated into Kestro::Model
//   module <name> { ... }       one service module: its result records and its
//                               actions, generated into Kestro::Calls::<name>
//
//   interface Name { member: Type; other?: Type; }     a record; "?" = the
//       service may leave it out (or send null). Members are declared in the
//       service's order.
//   interface Name extends Base { ... }   its own members, then Base's (a
//       member it declares itself replaces Base's of the same name)
//   type Name = JSONValue;       a record the service names without a shape
//                                we know: kept free-form, not invented
//
//   Types: string, number (always a 64-bit float: counts and ordinals too),
//   boolean, JSONValue (free-form), Date (sent and read in the {"$date"}
//   form), File, Form, T[], Record<string, T>, Indirect<T> (a record that
//   contains itself), a record's name (Model.X from a module), or an inline
//   { ... } whose record is named after its owner and member:
//   HomeResult.inbox -> HomeResultInbox; a list or map member is named in the
//   singular: HomeResult.routines -> HomeResultRoutine. Two different shapes
//   that would get the same name: the later one takes a number (X2, X3).
//   Time stamps are ISO strings, not Dates, unless the service sends $date.
//
//   Actions, inside a module:
//     kestChat(thread?: string): KestChatResult;   typed arguments and result
//     home(): HomeResult;          no arguments: sends {"args": []}
//     setPackAction(input: JSONValue): SetPackActionResult;
//     computer;                    arguments and result not declared here:
//                                  takes a list of JSONValues, returns a
//                                  JSONValue (or, for a name ending in
//                                  "Action", the shared Model.ActionOutcome)
//   The result record of an action is named after it: kestChat ->
//   KestChatResult.
//
// One file per concern: model.kestro.ts holds the shared views; each
// <module>.kestro.ts holds a module.

namespace Model {
  // What a changing action without a declared result answers: a refusal in
  // "error", "done" or "ok" when it happened, and what it made.
  interface ActionOutcome {
    error?: string;
    done?: boolean;
    ok?: boolean;
    id?: string;
    key?: string;
    run?: string;
    url?: string;
  }

  // --- Notifications -------------------------------------------------------
  interface NotificationView {
    id: string;
    kind: string;
    by?: { type: string; id: string; name: string; handle?: string };
    verb: string;
    title: string;
    text: string;
    href: string;
    read: boolean;
    at: string;
  }

  // --- Sites (analytics) -----------------------------------------------------
  type ProxyView = JSONValue;
  interface SiteView {
    siteId: string;
    domain: string;
    allowedHostnames: string[];
    cookieless: boolean;
    attackMode: boolean;
    exclude: JSONValue;
    kpi: string;
    color: string;
    script: string;
    replays: boolean;
    replaySample: number;
    timezone: string;
    share?: JSONValue;
    hasEvents: boolean;
    weeklyReport: boolean;
    monthlyReport: boolean;
    reportEmails: string[];
    spikeAlerts: boolean;
    dropAlerts: boolean;
    githubRepo?: string;
    githubBranch?: string;
    mentions: JSONValue;
    proxy?: ProxyView;
  }

  type TemplateView = JSONValue;

  // --- Runs and traces -------------------------------------------------------
  interface TraceChip {
    text: string;
    host?: string;
    url?: string;
  }
  interface TraceStep {
    tool: string;
    label: string;
    chip?: TraceChip;
    status: string;
    why?: string;
    input?: string;
    result?: string;
  }
  interface RunTrace {
    id: string;
    status: string;
    startedAt: string;
    endedAt?: string;
    doing?: string;
    rounds: { doing?: string; steps: TraceStep[] }[];
  }
  interface RunCallView {
    tool: string;
    label: string;
    input: JSONValue;
    why?: string;
    status: string;
    result?: string;
    approvalId?: string;
  }
  interface RunView {
    id: string;
    agent: string;
    status: string;
    startedAt: string;
    endedAt?: string;
    reply?: string;
    cites: Cite[];
    draft?: JSONValue;
    rounds: { startedAt: string; endedAt?: string; action?: string; doing?: string; calls: RunCallView[] }[];
  }

  // --- Kest chat ---------------------------------------------------------------
  interface Cite {
    type: string;
    id: string;
    title: string;
    kind: string;
    wrong?: { by: string; at: string; userId: string };
  }
  interface ReactionView {
    emoji: string;
    by: string[];
  }
  interface KestMessageView {
    id: string;
    threadId?: string;
    from: string;
    by: { id: string; type: string; name: string; via?: string; run?: string };
    agent?: string;
    avatar?: string;
    text: string;
    to: string[];
    reads: string[];
    runId?: string;
    failed: boolean;
    task?: { key: string; title: string; status: string };
    approvalIds: string[];
    reactions: ReactionView[];
    cites: Cite[];
    at: string;
  }
  interface KestFace {
    name: string;
    person?: string;
    agent?: string;
    avatar?: string;
  }
  interface KestAnswer {
    agent: string;
    runId: string;
    threadId?: string;
    doing?: string;
  }
  interface KestRoomMessage extends KestMessageView {
    replies: number;
    lastReplyAt?: string;
    repliedBy: KestFace[];
    answering: KestAnswer[];
  }
  interface KestThread {
    message: KestMessageView;
    replies: KestMessageView[];
    total: number;
    answering: KestAnswer[];
    with: string[];
  }

  // --- One-to-one chat -------------------------------------------------------------
  interface AgentView {
    handle: string;
    name: string;
    title: string;
    avatar: string;
    status: string;
    lead: boolean;
    paused?: boolean;
  }
  interface MessageView {
    id: string;
    role: string;
    text: string;
    runId?: string;
    failed?: boolean;
    cites?: Cite[];
    at: string;
  }
  interface ThreadSummary {
    id: string;
    call: boolean;
    error?: string;
    createdAt: string;
    updatedAt: string;
    title: string;
    status: string;
    agent: string;
    doing?: string;
    runId?: string;
    telegram: boolean;
    firstMessage?: MessageView;
    lastMessage?: MessageView;
    replies: number;
  }
  interface ThreadView {
    id: string;
    agent: string;
    title: string;
    status: string;
    error?: string;
    runId?: string;
    doing?: string;
    telegram: boolean;
    call: boolean;
    messages: MessageView[];
    createdAt: string;
    updatedAt: string;
  }
  type ApprovalView = JSONValue;
  type DraftView = JSONValue;

  // --- Tasks -------------------------------------------------------------------------
  interface FlowSummaryView {
    stage: string;
    kind?: string;
    size?: string;
    repo?: string;
    engineer?: string;
    qa?: string;
    enteredAt?: string;
    tries?: number;
    stuck?: boolean;
    retry?: boolean;
    approve?: boolean;
    tested?: boolean;
    refused?: boolean;
    checks?: JSONValue;
    codeReview?: JSONValue;
    tests?: JSONValue;
  }
  type FlowFullView = JSONValue;
  interface TaskSummaryView {
    number: number;
    id: string;
    version: number;
    blocked: boolean;
    key: string;
    error?: string;
    createdAt: string;
    updatedAt: string;
    parent?: { id: string; key: string; title: string };
    title: string;
    area: string;
    status: string;
    working?: { runId: string; doing?: string };
    waiting: number;
    priority: string;
    assignee?: { type: string; id: string; name: string };
    project?: { id: string; name: string };
    milestone?: { id: string; name: string };
    areaDefault: boolean;
    labels: string[];
    dueAt?: string;
    sortOrder: number;
    subOrder: number;
    waitsOn: { id: string; key: string; title: string; status: string }[];
    progress: { done: number; total: number };
    comments: number;
    pr?: { number: number; url: string; state: string };
    flow?: FlowSummaryView;
    requestedBy?: JSONValue;
    createdBy?: JSONValue;
    closedAt?: string;
  }
  interface AttachmentView {
    id: string;
    name: string;
    contentType: string;
    size: number;
    by?: JSONValue;
    createdAt: string;
    url: string;
  }
  interface CodeView {
    repo?: string;
    branch?: string;
    working?: boolean;
    checks?: JSONValue;
    verified?: boolean;
    pr?: JSONValue;
    summary?: string;
    diff?: string;
    at?: string;
  }
  interface AskView {
    id: string;
    taskId: string;
    agent: string;
    kind: string;
    question: string;
    options: string[];
    draftId?: string;
    doc?: string;
    site?: string;
    status: string;
    answer?: string;
    answeredBy?: string;
    answeredAt?: string;
    createdAt: string;
  }
  interface ActivityView {
    id: string;
    kind: string;
    by?: JSONValue;
    text?: string;
    change?: { field: string; from?: JSONValue; to?: JSONValue };
    runId?: string;
    at: string;
  }
  interface TaskView extends TaskSummaryView {
    flow?: FlowFullView;
    description: string;
    watchers: { id: string; name: string }[];
    watching: boolean;
    reactions: ReactionView[];
    attachments: AttachmentView[];
    code?: CodeView;
    subtasks: TaskSummaryView[];
    asks: AskView[];
    activity: ActivityView[];
  }
  interface TreeNode {
    key: string;
    title: string;
    status: string;
    from?: string;
    assignee?: { type: string; id: string; name: string };
    state: string;
    doing?: string;
    runId?: string;
    model?: string;
    families: string[];
    steps: number;
    ms: number;
    since?: string;
    usd?: number;
  }
  interface TaskTree {
    top: string;
    nodes: TreeNode[];
  }
  interface BoardCounts {
    done: number;
    backlog: number;
    todo: number;
    in_progress: number;
    needs_you: number;
    in_review: number;
    canceled: number;
  }
  interface BoardSteps {
    outside: number;
    stages: { plan: number; test: number; analyze: number; build: number; release: number };
  }
  interface SavedViewView {
    id: string;
    name: string;
    shared: boolean;
    mine: boolean;
    owner: { id: string; name: string };
    filters: SavedViewViewFilters;
    layout: string;
    display?: JSONValue;
    path: string;
    createdAt: string;
    updatedAt: string;
  }
  interface SavedViewViewFilters {
    q?: string;
    assignee?: string[];
    priority?: string[];
    project?: string[];
    milestone?: string[];
    area?: string[];
    label?: string[];
    status?: string[];
    creator?: string[];
    due?: string[];
    mine?: boolean;
    sub?: boolean;
  }
  interface TeammateView {
    handle: string;
    name: string;
    title: string;
    avatar: string;
    status: string;
    lead: boolean;
    area?: string;
    role?: string;
  }
  interface PersonView {
    id: string;
    name: string;
    email?: string;
    avatar?: string;
  }
  interface ProjectView {
    id: string;
    name: string;
    milestones: { id: string; name: string }[];
  }
}
