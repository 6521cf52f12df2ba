// The "tasks" module: POST /api/app/tasks/<action>.

module tasks {
  interface TaskResult {
    task: Model.TaskView;
    kest: Model.TeammateView[];
    people: Model.PersonView[];
    projects: Model.ProjectView[];
    labels: string[];
    approvals: Model.ApprovalView[];
    drafts: Model.DraftView[];
    siblings: { id: string; key: string; title: string; status: string }[];
    report?: { id: string; answer: string; version: number };
    tests?: JSONValue;
    review?: JSONValue;
    trace?: Model.RunTrace;
    look?: { status: string; since?: string; lessons: number; waiting: number; facts: number };
    work?: { answer?: string; pictures: JSONValue[]; docs: JSONValue[] };
    tree?: Model.TaskTree;
    notebook?: { id: string; task: string; by: JSONValue; text: string; runId?: string; at: string }[];
    me: string;
    canManage: boolean;
    canApprovePlans: boolean;
    canDelete: boolean;
    release: string;
  }
  interface TasksResult {
    tasks: Model.TaskSummaryView[];
    counts: Model.BoardCounts;
    steps?: Model.BoardSteps;
    labels: string[];
    views: Model.SavedViewView[];
    areas: { engineering: number; marketing: number; operations: number; all: number };
    kest: Model.TeammateView[];
    people: Model.PersonView[];
    projects: Model.ProjectView[];
    me: string;
    myKeys: string[];
    canManage: boolean;
    remember: string;
  }
  interface ProjectsResult {
    projects: { id: string; name: string; status: string; lead?: string; progress: { done: number; total: number }; updatedAt: string }[];
    canManage: boolean;
  }
  interface ProjectResult {
    project: { id: string; name: string; status: string; description: string; lead?: string; milestones: { id: string; name: string; dueAt?: string }[] };
    tasks: Model.TaskSummaryView[];
    updates: { id: string; by: JSONValue; text: string; at: string }[];
    canManage: boolean;
  }

  project(id: string): ProjectResult;
  projects(): ProjectsResult;
  task(key: string): TaskResult;
  tasks(filters?: JSONValue): TasksResult;
}
