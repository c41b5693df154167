-- What the picture shows: a finding, and what hovering over a line tells.
local colours = {
  Normal = { fg = '#d8dee9', bg = '#242933' },
  Comment = { fg = '#7b88a1', italic = true },
  Statement = { fg = '#88c0d0' },
  Label = { fg = '#ebcb8b' },
  Identifier = { fg = '#d8dee9' },
  Number = { fg = '#b48ead' },
  Operator = { fg = '#9aa5b8' },
  Special = { fg = '#9aa5b8' },
  PreProc = { fg = '#a3be8c' },
  String = { fg = '#a3be8c' },
  NonText = { fg = '#4c566a' },
  LineNr = { fg = '#4c566a' },
  SignColumn = { bg = '#242933' },
  StatusLine = { fg = '#d8dee9', bg = '#3b4252' },
  NormalFloat = { fg = '#e5e9f0', bg = '#3b4252' },
  FloatBorder = { fg = '#7b88a1', bg = '#3b4252' },
  DiagnosticWarn = { fg = '#ebcb8b' },
  DiagnosticInfo = { fg = '#81a1c1' },
  DiagnosticUnderlineWarn = { underline = true, sp = '#ebcb8b' },
}

local function is_floating(window) return vim.api.nvim_win_get_config(window).relative ~= '' end

vim.o.termguicolors = true
vim.o.number, vim.o.wrap = true, false
vim.o.signcolumn = 'yes'
vim.o.laststatus = 2
vim.o.statusline = ' %f%=%l:%c '
vim.o.showmode, vim.o.ruler, vim.o.showcmd = false, false, false
vim.o.shortmess = vim.o.shortmess .. 'F'
for group, look in pairs(colours) do
  vim.api.nvim_set_hl(0, group, look)
end

vim.lsp.handlers['textDocument/hover'] = vim.lsp.with(vim.lsp.handlers.hover, { border = 'rounded', max_width = 64 })
require('kiln').setup({ cmd = { vim.env.KILN_LSP } })
vim.schedule(function()
  vim.cmd('silent edit!')
  vim.cmd('normal! 14Gzt')
  vim.fn.search('LDA colours', 'c')
  vim.wait(5000, function() return #vim.diagnostic.get(0) > 0 end)
end)
-- A window that hovers closes when the cursor moves, so Neovim first has to notice that it has.
vim.defer_fn(function()
  vim.lsp.buf.hover()
  vim.wait(5000, function() return #vim.tbl_filter(is_floating, vim.api.nvim_list_wins()) > 0 end)
  for _, window in ipairs(vim.tbl_filter(is_floating, vim.api.nvim_list_wins())) do
    vim.wo[window].linebreak = true
  end
  vim.cmd('echo "" | redraw!')
  vim.fn.writefile({}, 'ready')
end, 1500)
