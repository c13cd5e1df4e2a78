# Words of diskscout's command line for bash: to be sourced, or installed as bash-completion/completions/diskscout.
# shellcheck shell=bash

# Of each kind the columns.
declare -gA _diskscout_columns=(
	[devices]="name node major minor kind disk partition_number size logical_sector physical_sector rotational
		removable hidden read_only transport vendor model model_source serial serial_source firmware
		firmware_source wwn eui64 nguid uuid scsi_host scsi_channel scsi_target scsi_lun links
		controller_pci numa_node state dm_name dm_uuid dm_kind dm_target backing_file under_root under_boot
		under_swap mount_points"
	[links]="upper lower relation address state access"
	[filesystems]="name source error reason ambiguous table table_id partitions usage type label uuid uuid_sub version"
	[arrays]="name uuid metadata level state wanted active failed spare degraded size chunk_size layout
		sync_action sync_done sync_total sync_speed mismatches bitmap consistency members"
	[mounts]="kind id parent_id major minor devices source type root mount_point options super_options shadowed
		total used available priority"
	[disks]="disk_id device_name description interface position address media vendor model serial_number
		firmware_version size total_cylinders tracks_per_cylinder sectors_per_track total_heads total_tracks
		total_blocks total_blocks_low32 total_sectors total_sectors_low32 bytes_per_block bytes_per_sector
		part_number used_by_system ex_part_number"
	[partitions]="device_name disk_device_name part_index first_sector start size total_sectors total_sectors_low32
		type file_system mount_points label total_space used_space used_by_system bootable boot_byte"
	[cdroms]="cdrom_id device_name description interface position media vendor model serial_number
		firmware_version mount_point label total_space"
	[controllers]="controller_id adapter_name adapter_type availability availability_word clustering clustering_word"
	[containers]="controller raid_id disk_number members type type_word total_size total_size_low32 stripe_size usage
		usage_word hot_spare label state rebuilt_permille device"
	[raid_disks]="controller address vendor model device_type device_type_word blocks blocks_least bytes_per_block size usage
		usage_word shared shared_word rate"
	[raid_space]="controller address offset offset_low32 free_space free_space_low32"
	[raid_partitions]="controller address offset size raid_id type type_word multilevel_raid_id multilevel_type
		multilevel_type_word part_of read_write_attribute read_write_attribute_word"
	[tasks]="controller task_id function function_word done_permille container state state_word"
	[defects]="controller address primary grown result result_word"
)
_diskscout_kinds="devices links filesystems arrays mounts disks partitions cdroms
	controllers containers raid_disks raid_space raid_partitions tasks defects"
_diskscout_options="-h --help --version --json --classic --bytes --no-headings --pairs --inverse --plugin --sysroot
	--config --block-plugin --controller --format -o --columns --sort --timeout"
_diskscout_tree="-h --help --version --json --bytes --plugin --sysroot --config --block-plugin --controller --format --timeout"
_diskscout_doctor="-h --help --version --json --raid --plugin --sysroot --config --block-plugin --format --timeout --pid"

# Those that take a value.
_diskscout_valued="--controller --format -o --columns --sort --timeout --plugin --block-plugin --config --sysroot --pid"

# Into `operands`: what is neither an option nor the value of one, but for the word that is being typed.
_diskscout_operands() {
	local i before
	operands=()
	for ((i = 1; i < ${#COMP_WORDS[@]}; i++)); do
		before=${COMP_WORDS[i - 1]}
		if [[ $i != "$COMP_CWORD" && ${COMP_WORDS[i]} != [-=]* && $before != "=" &&
			" $_diskscout_valued " != *" $before "* ]]; then
			operands+=("${COMP_WORDS[i]}")
		fi
	done
}

# The kind whose table is meant: the one that is named, or that of devices alone. Of several there is none.
_diskscout_kind() {
	local operand kind='' alone=''
	for operand in "${operands[@]:1}"; do
		if [[ $operand == */* ]]; then
			alone=devices
		elif [[ -n $kind && $kind != "${operand//-/_}" ]]; then
			return 1
		else
			kind=${operand//-/_}
		fi
	done
	kind=${kind:-$alone}
	[[ -n $kind && -n ${_diskscout_columns[$kind]+known} ]] && printf '%s\n' "$kind"
}

_diskscout_words() {
	mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

# bash quotes what it is told to be file names.
_diskscout_paths() {
	mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
	compopt -o filenames 2>/dev/null
}

# A list with commas, and each column once; behind a "+" as well.
_diskscout_column_list() {
	local columns=$1 word=$2 last before column
	last=${word##*[,+]}
	before=${word%"$last"}
	for column in $columns; do
		if [[ $column == "$last"* && ,${before#+} != *",$column,"* ]]; then
			COMPREPLY+=("$before$column")
		fi
	done
	compopt -o nospace 2>/dev/null
}

_diskscout_value() {
	local option=$1 word=$2 kind
	case $option in
	--plugin | --block-plugin | --config) _diskscout_paths -f "$word" ;;
	--sysroot) _diskscout_paths -d "$word" ;;
	--format) _diskscout_words "1 2" "$word" ;;
	--sort) kind=$(_diskscout_kind) && _diskscout_words "${_diskscout_columns[$kind]}" "$word" ;;
	-o | --columns) kind=$(_diskscout_kind) && _diskscout_column_list "${_diskscout_columns[$kind]}" "$word" ;;
	esac
}

_diskscout() {
	local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command operands
	COMPREPLY=()
	# bash takes "--option=value" apart.
	if [[ $word == "=" ]]; then
		word=
	elif [[ $before == "=" ]]; then
		before=${COMP_WORDS[COMP_CWORD - 2]}
	fi
	_diskscout_operands
	command=${operands[0]-}
	if [[ $command == schema ]]; then
		return
	elif [[ " $_diskscout_valued " == *" $before "* ]]; then
		_diskscout_value "$before" "$word"
	elif [[ $word == -* && $command == tree ]]; then
		_diskscout_words "$_diskscout_tree" "$word"
	elif [[ $word == -* && $command == doctor ]]; then
		_diskscout_words "$_diskscout_doctor" "$word"
	elif [[ $word == -* ]]; then
		_diskscout_words "$_diskscout_options" "$word"
	elif [[ $command == doctor || $command == tree ]]; then
		return
	elif [[ $command != list ]]; then
		_diskscout_words "list tree doctor schema" "$word"
	elif [[ $word == */* ]]; then
		_diskscout_paths -f "$word"
	else
		_diskscout_words "$_diskscout_kinds" "$word"
	fi
}

complete -F _diskscout diskscout
