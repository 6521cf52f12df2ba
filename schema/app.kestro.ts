// The "app" module: POST /api/app/app/<action>.

module app {
  interface NotificationsActionResult {
    items: Model.NotificationView[];
    unread: number;
    next?: string;
  }
  interface NotificationCountActionResult {
    unread: number;
  }
  interface ReadNotificationsActionResult {
    unread: number;
  }
  interface PostKestMessageActionResult {
    error?: string;
    done?: boolean;
    threadId?: string;
    started?: string[];
    handed?: string[];
    stopped?: string[];
    skipped?: { agent: string; error: string }[];
    triaging?: boolean;
  }
  interface CreateTaskActionResult {
    error?: string;
    done?: boolean;
    key?: string;
  }
  interface CommentOnTaskActionResult {
    error?: string;
    done?: boolean;
    id?: string;
    started?: string[];
  }
  interface StartThreadActionResult {
    error?: string;
    done?: boolean;
    id?: string;
  }
  interface SetPackActionResult {
    error?: string;
  }
  // One breakdown of a site's visits (referrers, countries, devices, ...).
  interface AnalyticsBreakdownActionResult {
    kind: string;
    rows: { value: string; label?: string; visitors: number; visits: number; share: number }[];
    total: number;
    others: number;
  }
  interface PaletteActionResult {
    items: { kind: string; id: string; title: string; subtitle?: string; href: string; icon?: string }[];
  }
  interface SkillOptionsActionResult {
    skills: { id: string; name: string; description: string; agent?: string }[];
  }
  interface AttachablesActionResult {
    items: { kind: string; id: string; title: string }[];
  }
  // An input record: when it is due is sent in the {"$date"} form.
  interface ScheduleInput {
    runId: string;
    at: Date;
    note?: string;
  }

  addCompetitorAction;
  addCustomAppAction;
  addDocFieldOptionAction;
  addDocFolderAction;
  addNotebookEntryAction;
  addPackAction;
  addPlanAction;
  addResearchToBrainAction;
  aiUsageAction;
  analyticsAdsAction;
  analyticsBotPagesAction;
  analyticsBotsAction;
  analyticsBreakdownAction(siteId: string, kind: string, range?: JSONValue): AnalyticsBreakdownActionResult;
  analyticsExportAction;
  analyticsFunnelAction;
  analyticsFunnelsAction;
  analyticsGoalAction;
  analyticsGoalsAction;
  analyticsHeatmapPagesAction;
  analyticsInsightsAction;
  analyticsJourneyAction;
  analyticsKeywordsAction;
  analyticsLinksAction;
  analyticsMentionsAction;
  analyticsPathsAction;
  analyticsRetentionAction;
  analyticsSpeedAction;
  analyticsVisitorAction;
  analyticsVisitorsAction;
  answerAskAction;
  attachablesAction(query?: string): AttachablesActionResult;
  cancelTestRunAction;
  checkBrainNoteAction;
  checkProxyAction;
  checkoutAction;
  clearNotificationsAction(): Model.ActionOutcome;
  commentOnTaskAction(taskId: string, text: string): CommentOnTaskActionResult;
  connectAppAction;
  connectLaterAction;
  connectTelegramAction;
  crawlerSettingsAction;
  crawlerTokenAction;
  createApiKeyAction;
  createCanvasAction;
  createDocAction;
  createDocFieldAction;
  createInviteAction;
  createNoteAction;
  createProjectAction;
  createRoutineAction;
  createTaskAction(input: JSONValue): CreateTaskActionResult;
  createWorkspaceAction;
  decideApprovalAction;
  decideRuleAction;
  deleteAlertAction;
  deleteAttachmentAction;
  deleteBrandAssetAction;
  deleteDocAction;
  deleteDocFieldAction;
  deleteFunnelAction;
  deleteImportAction;
  deleteLinkAction;
  deleteNoteAction;
  deletePlaceAction;
  deleteResearchAction;
  deleteSegmentAction;
  deleteSkillAction;
  deleteTaskAction(taskId: string): Model.ActionOutcome;
  deleteTestAction;
  deleteViewAction;
  disconnectAiAction;
  disconnectAppAction;
  disconnectTelegramAction;
  dismissNotificationAction;
  dismissSuggestionAction;
  docLinksAction;
  draftRoleAction;
  endAutoReleaseAction;
  exportDocAction;
  findCompetitorsAction;
  finishTeachAction;
  fireAgentAction;
  forgetBrainSourceAction;
  googleImportAction;
  googlePropertiesAction;
  grantAutoReleaseAction;
  handRoutineAction;
  hireAgentAction;
  hireQaAction;
  hireResearcherAction;
  importDocAction;
  keepComputerAwakeAction;
  learnFromTaskAction(taskId: string): Model.ActionOutcome;
  learnWebsiteAction;
  listCustomAppToolsAction;
  listDocNotionPagesAction;
  makeAdminAction;
  markBrainSourceWrongAction;
  markDraftAction;
  moreActivityAction;
  notificationCountAction(): NotificationCountActionResult;
  notificationsAction(cursor?: string): NotificationsActionResult;
  nudgeAgentAction;
  openDesktopAction;
  orderPlansAction;
  orderProductsAction;
  paletteAction(query: string): PaletteActionResult;
  pinProductAction;
  placeDocAction;
  placeLoginsAction;
  planModelsAction;
  portalAction;
  postKestMessageAction(input: JSONValue): PostKestMessageActionResult;
  postProjectUpdateAction;
  reactInKestAction(messageId: string, emoji: string): Model.ActionOutcome;
  reactToTaskAction(taskId: string, emoji: string): Model.ActionOutcome;
  readAllDocsAction;
  readBrandAction;
  readNotificationsAction(ids: string[]): ReadNotificationsActionResult;
  releaseTaskAction;
  rememberNoteAction;
  removeCompetitorAction;
  removeCustomAppAction;
  removeDocFolderAction;
  removeFromWorkspaceAction;
  removeMemberAction;
  removePackAction;
  removePlanAction;
  removeTelegramBotAction;
  renameDocFolderAction;
  renameMeAction;
  renameOrganizationAction;
  restoreBrainSourceAction;
  revokeApiKeyAction;
  revokeInviteAction;
  runAction;
  runTestsAction;
  saveAgentAvatarAction;
  saveAgentMemoryAction;
  saveAlertAction;
  saveFunnelAction;
  saveKestNamesAction;
  saveLinkAction;
  saveMemoryFileAction;
  savePlaceAction;
  saveSegmentAction;
  saveSharedFileAction;
  saveSkillAction;
  saveTestAction;
  saveViewAction;
  scheduleAction(input: ScheduleInput): Model.ActionOutcome;
  seeChangelogAction;
  sendMessageAction(input: JSONValue): Model.ActionOutcome;
  setAgentLimitsAction;
  setAgentPausedAction;
  setAgentPlanAction;
  setAgentSitesAction;
  setArtGrantAction;
  setDashboardAction;
  setImageModelAction;
  setLogoAction;
  setLogoDarkAction;
  setMemberProductsAction;
  setMemberRoleAction;
  setNotificationAction;
  setPackAction(input: JSONValue): SetPackActionResult;
  setPackSkillAction;
  setPhotoAction;
  setPlanModelAction;
  setSkillAction;
  setupAnalyticsAction;
  skillOptionsAction(query?: string): SkillOptionsActionResult;
  startPlaceRunAction;
  startResearchAction;
  startTeachAction;
  startThreadAction(input: JSONValue): StartThreadActionResult;
  styleGoalAction;
  supportDocAction;
  switchOnTemplateAction;
  switchToolsAction;
  switchWorkspaceAction(workspaceId: string): Model.ActionOutcome;
  syncPackAction;
  syncRevenueAction;
  teachStatusAction;
  testFindingAction;
  unmarkBrainSourceWrongAction;
  updateAnalyticsAction;
  updateAppAction;
  updateBrandAction;
  updateBrandAssetAction;
  updateBusinessAction;
  updateCompetitorAction;
  updateCustomAppAction;
  updateDocFieldAction;
  updateEngineeringAction;
  updatePreferencesAction;
  updateProjectAction;
  updateRepoAction;
  updateResearchAction;
  updateRoutineAction;
  updateTasksAction(ids: string[], changes: JSONValue): Model.ActionOutcome;
  updateTestSettingsAction;
  updateViewAction;
  updateWorkspaceAction;
  watchTaskAction(taskId: string, watch: boolean): Model.ActionOutcome;
  websiteImportsAction;
}
